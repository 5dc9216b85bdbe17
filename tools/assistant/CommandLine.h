#pragma once
// Command lines split into items by the rules of Windows programs (CommandLineToArgvW).

#include "base/ZString.h"

#include <vector>

// The items after the program name of a whole command line.
std::vector<ZString> argumentsOf(const ZString& commandLine);

// The items of a command line that holds arguments only, such as one received by WM_COPYDATA.
std::vector<ZString> splitArguments(const ZString& arguments);
