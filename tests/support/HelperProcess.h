#pragma once
// Child processes for tests: any program, or the helper tests/helpers/TestHelper.cpp.

#include "base/ZString.h"
#include "base/win/KernelHandle.h"

#include <string>
#include <vector>

// The process handle, empty on failure.
KernelHandle startProgram(const ZString& commandLine);

// Runs `commandLine` to its end (at most `timeoutMs`) and returns its exit code, or -1 if
// it could not be started or did not end; `output` receives its standard output and error.
int runProgram(const ZString& commandLine, std::string& output, unsigned timeoutMs = 60000);

// Keeps something in the helper process for the object's lifetime ("hold-..." commands).
class HeldByHelper {
public:
    explicit HeldByHelper(const ZString& command);
    ~HeldByHelper();
    HeldByHelper(const HeldByHelper&) = delete;
    HeldByHelper& operator=(const HeldByHelper&) = delete;

    bool holding() const { return holding_; }

private:
    KernelHandle ready_;
    KernelHandle done_;
    KernelHandle process_;
    bool holding_ = false;
};

class ClipboardHolder : public HeldByHelper {
public:
    ClipboardHolder() : HeldByHelper(L"hold-clipboard") {}
};

class MutexHolder : public HeldByHelper {
public:
    explicit MutexHolder(const ZString& name) : HeldByHelper(L"hold-mutex " + name) {}
};

// Points the helper's "record" command at a fresh file in `folder`; lines() reads what the
// helper processes started meanwhile have recorded (one command line each).
class CommandRecorder {
public:
    explicit CommandRecorder(const ZString& folder);
    ~CommandRecorder();
    CommandRecorder(const CommandRecorder&) = delete;
    CommandRecorder& operator=(const CommandRecorder&) = delete;

    // The command line with which the helper is started to record.
    static ZString commandFor(const ZString& arguments);
    // Copies the helper to `path`, where it records under that name.
    static bool installAs(const ZString& path);
    std::vector<std::string> lines() const;
    // Waits (pumping messages) until at least `count` lines are there.
    bool waitForLines(size_t count, unsigned timeoutMs = 10000) const;

private:
    ZString path_;
};
