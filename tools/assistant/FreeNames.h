#pragma once
// Hands out the names under which the assistant saves: "NAME.pdf", "NAME (2).pdf",
// "NAME (3).pdf", ... in a folder, the first that does not exist, searching from where the
// last search for that folder and name stopped. A thousand files of one name thus cost a
// probe or two each, not a search from the start every time. A name freed meanwhile is not
// handed out again by this object. Nothing here guards against overwriting: the caller
// creates the file with a call that fails when it exists, and asks again.

#include "base/ZString.h"
#include "tools/assistant/SafeFileName.h"

#include <unordered_map>

class FreeNames {
public:
    explicit FreeNames(int highestNumber = kHighestFileNumber) : highestNumber_(highestNumber) {}

    // The full path of the next free name; empty once every number up to the highest has
    // been passed.
    ZString next(const ZString& folder, const ZString& name);

private:
    int highestNumber_;
    // Keyed by folder and name in lower case, as Windows compares file names.
    std::unordered_map<ZString, int> nextNumber_;
};
