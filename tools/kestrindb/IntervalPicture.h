// What the table and the picture of spectrum intervals share.
#pragma once

#include <string>

#include "Answer.h"

namespace kestrindb {

// "0.125 orders, 2.0 Hz"
std::string ResolutionText(const Json& json);

}  // namespace kestrindb
