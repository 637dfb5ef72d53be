// Names and ids: what a user may write for either, and what he is told of one that isn't there.
//
// What has names is told by the number of its element in a key, Clavis::qOrder; triggers have the
// next one.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Answer.h"

namespace kestrindb {

inline constexpr int trigger_element = Clavis::element_count;

// What kestrindb calls an element: "test step".
const char* Noun(int element);
// What `kestrindb names` takes for it: "test-step".
const char* Word(int element);

using Names = std::vector<std::pair<int, std::wstring>>;

// All of an element in the order of the ids.
Names NamesOf(const CQtParamInstance& params, int element);

std::string NameOf(const CQtParamInstance& params, int element, int id);

// The name to show for a test step. Empty for a virtual one that lacks a band: the name that is
// made for it holds a number that means nothing.
std::string StepName(const CQtParamInstance& params, int mode);

// Whether the data base knows the id, -1 excepted; a virtual test step by its base.
bool IsKnown(const CQtParamInstance& params, int element, int id);

// The id that a user means by a number or a name. Throws Failure, with the nearest one if there is
// any, for a name that isn't there or belongs to several, and for an id that isn't known.
int KnownId(const CQtParamInstance& params, int element, const std::string& text);

// The same, but any number is an id. A parameter is looked for in the instrument, if one is given:
// only there its name is its own.
int IdOf(const CQtParamInstance& params, int element, const std::string& text, int instrument = -1);

// The integer that the text is, or nothing.
std::optional<int> IntegerOf(std::string_view text);

// " Did you mean X?" with the known text nearest to a wrong one, or else " See kestrindb " and what
// lists them.
std::string Hint(const std::string& wrong, const std::vector<std::wstring>& known,
                 const std::string& list);

}  // namespace kestrindb
