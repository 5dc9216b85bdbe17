#pragma once
// The module's folder for intermediate files ("Pryxa" below the system temporary folder,
// or a numbered fallback), the write test, and unique file names in it.
//
// Nothing is cached: every caller computes the folder again, so a folder that becomes
// usable (or unusable) is noticed on the next use.

#include "base/ZString.h"

#include <stdexcept>

// No usable folder for intermediate files; the user has been told already.
struct TempFolderError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// `folder` and `name` with a single backslash between them; `name` alone for an empty folder.
ZString joinPath(const ZString& folder, const ZString& name);

// The first existing one of: GetTempPathW, %TMP%, %TEMP%, %TMPDIR%; else "." (the
// current folder). Each made absolute against the current folder at the time of the call,
// and without a trailing backslash.
ZString systemTempFolder();

// A folder that the current user can write to: "Pryxa", else "Pryxa_1" to "Pryxa_99",
// else the system temporary folder itself. If none is writable, the user is told and
// TempFolderError is thrown (reportUnusableTempFolder).
ZString moduleTempFolder();

// Creates the folder and its missing parents; true if `path` is a folder afterwards.
bool createFolderTree(const ZString& path);

// True if a file could be created in `folder` (created first if it is missing). The test
// file is deleted at once; after 10 failed tries 10 ms apart the answer is false.
bool isWritable(const ZString& folder);

// Shows the error box for an unusable temporary folder (no owner window), then throws
// TempFolderError. Its text says whether the folder is missing or not writeable.
[[noreturn]] void reportUnusableTempFolder(const ZString& folder);

// A full path below `folder` (empty: the system temporary folder) of a file that does not
// exist yet: prefix, "_" unless the prefix is empty or ends in one, a process-wide
// counter, the tick count, a random value, each separated by "_", then `extension` as
// given (".png"). The file is only named, not created.
ZString uniqueFileName(const ZString& folder, const ZString& prefix, const ZString& extension);
