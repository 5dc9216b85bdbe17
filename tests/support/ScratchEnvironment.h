#pragma once
// Points the module and its companions at scratch places for one test: configuration in a
// fresh registry key, temporary files in a fresh folder (TMP and TEMP), and language files
// from the shipped folder unless a test chooses another; on request also other temporary
// folder variables and another current folder. All is undone when the object goes, so that
// tests never touch the user's values and do not depend on each other.

#include "base/ZString.h"
#include "base/win/RegistryKey.h"

class ScratchEnvironment {
public:
    ScratchEnvironment();
    ~ScratchEnvironment();
    ScratchEnvironment(const ScratchEnvironment&) = delete;
    ScratchEnvironment& operator=(const ScratchEnvironment&) = delete;

    // Below HKEY_CURRENT_USER; user values are in its "User" subkey, program values in "Program".
    const ZString& registryKey() const { return registryKey_; }
    // The scratch program values, open for writing (as an installer would write them).
    RegistryKey programValues() const
    {
        return RegistryKey::openForWriting(HKEY_CURRENT_USER, registryKey_ + L"\\Program");
    }
    const ZString& folder() const { return folder_; }
    // What TMP and TEMP point at.
    const ZString& tempFolder() const { return tempFolder_; }
    // The shipped language files beside the test program.
    static ZString shippedLanguageFolder();
    void useLanguageFolder(const ZString& folder);
    // Sets TMP, TEMP and TMPDIR (an empty value removes the variable). Child processes
    // inherit them.
    void setTempVariables(const ZString& tmp, const ZString& temp, const ZString& tmpdir);
    // Makes `folder` the current folder; false if it cannot be.
    bool useCurrentFolder(const ZString& folder);
    // Writes a UTF-8 file below folder() and returns its path.
    ZString writeFile(const ZString& relativePath, const std::string& utf8) const;

private:
    ZString registryKey_;
    ZString folder_;
    ZString tempFolder_;
    ZString savedVariables_[3]; // TMP, TEMP, TMPDIR
    ZString savedCurrentFolder_;
};
