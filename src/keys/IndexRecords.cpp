#include "keys/IndexRecords.h"

#include <ostream>
#include <string>

#include "interfaces/text/Number.h"

using namespace kestrin;

std::wostream& operator<<(std::wostream& out, const QClavis& key) {
  std::wstring text;
  for (const int id : key.id) {
    if (!text.empty()) text += L' ';
    Number::Append(text, id);
  }
  return out << text;
}
