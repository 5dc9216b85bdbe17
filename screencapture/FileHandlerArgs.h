#pragma once
// The launch arguments with which files are handed to the suite's assistant, and the
// command line they make:
//
//   [-deleteFile | -deleteFiles] [-dir D] [-name N] [-profile P] [-serviceName S] [-owner O] FILE...
//
// "-deleteFile" when the one file may be deleted after use, "-deleteFiles" for several;
// each option only when its value is not empty; then the files.
//
// Quoting: an item that is empty or holds a blank, a tab or a double quote is written in
// double quotes; inside, a double quote is preceded by a backslash, and backslashes are
// doubled where they come before a double quote (also before the closing one). These are
// the rules by which Windows programs split their command line (CommandLineToArgvW), so
// the assistant receives every path and value whole.

#include "base/ZString.h"

#include <vector>

namespace screenCapture {

struct FileHandlerArgs {
    std::vector<ZString> files;
    ZString dir;
    ZString name;
    ZString profile;
    ZString serviceName;
    ZString owner;
    bool deleteFile = false;

    ZString commandLine() const;
};

// One command-line item, quoted as described above when it needs it.
ZString quoteArgument(const ZString& item);

// The items, each quoted when it needs it, separated by single blanks.
ZString joinArguments(const std::vector<ZString>& items);

// Reads the items of such a command line, already split, back into `args`. False with
// `error` naming the item for an unknown option, an option without its value, or no file.
bool parseFileHandlerArgs(const std::vector<ZString>& items, FileHandlerArgs& args, ZString& error);

} // namespace screenCapture
