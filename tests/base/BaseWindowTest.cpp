#include "base/win/BaseWindow.h"
#include "base/win/IMessageFilter.h"
#include "base/win/IMessageListener.h"
#include "tests/support/UiRobot.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <new>
#include <string>
#include <vector>

namespace {

// The handler of RecordingWindow answers this with 42; the plain class with 7.
constexpr UINT kProbe = WM_APP + 1;
constexpr LRESULT kHandled = 42;
constexpr LRESULT kPlainAnswer = 7;

const wchar_t* const kBoundClass = L"PryxaBaseWindowTestBound"; // procedure: BaseWindow::windowProc
const wchar_t* const kPlainClass = L"PryxaBaseWindowTestPlain"; // a procedure of its own

LRESULT CALLBACK plainProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    return message == kProbe ? kPlainAnswer : DefWindowProcW(window, message, wParam, lParam);
}

void registerClass(const wchar_t* name, WNDPROC proc)
{
    WNDCLASSW windowClass = {};
    windowClass.lpfnWndProc = proc;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = name;
    RegisterClassW(&windowClass); // once per process; later calls fail harmlessly
}

HWND makeWindow(const wchar_t* className, void* parameter = nullptr, HWND parent = nullptr, DWORD style = WS_POPUP)
{
    registerClass(kBoundClass, BaseWindow::windowProc);
    registerClass(kPlainClass, plainProc);
    return CreateWindowExW(0, className, L"", style, 10, 10, 100, 100, parent, nullptr, GetModuleHandleW(nullptr),
                           parameter);
}

WNDPROC procedureOf(HWND window)
{
    return reinterpret_cast<WNDPROC>(GetWindowLongPtrW(window, GWLP_WNDPROC));
}

class RecordingWindow : public BaseWindow {
public:
    std::vector<UINT> seen;
    std::function<void(UINT)> onMessage; // runs inside the handler

    bool saw(UINT message) const { return std::find(seen.begin(), seen.end(), message) != seen.end(); }

protected:
    LRESULT handleMessage(UINT message, WPARAM wParam, LPARAM lParam) override
    {
        seen.push_back(message);
        if (onMessage)
            onMessage(message);
        return message == kProbe ? kHandled : defaultProc(message, wParam, lParam);
    }
};

// A RecordingWindow in storage that outlives it, so that "deleting" it can scribble over
// its memory: anything that still touched the object afterwards would crash.
class ScribbledWindow {
public:
    ScribbledWindow() { new (storage_) RecordingWindow(); }
    ~ScribbledWindow()
    {
        if (alive_)
            window().~RecordingWindow();
    }
    RecordingWindow& window() { return *std::launder(reinterpret_cast<RecordingWindow*>(storage_)); }
    void destroy()
    {
        window().~RecordingWindow();
        alive_ = false;
        std::memset(storage_, 0xCD, sizeof storage_);
    }
    bool alive() const { return alive_; }

private:
    alignas(RecordingWindow) unsigned char storage_[sizeof(RecordingWindow)];
    bool alive_ = true;
};

// ---------------------------------------------------------------------------------------
// Binding

TEST(BaseWindowBinding, WmCreateBindsTheObjectGivenAsParameter)
{
    RecordingWindow object;
    HWND window = makeWindow(kBoundClass, &object);
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(object.handle(), window);
    EXPECT_TRUE(object.isAttached());
    EXPECT_TRUE(object.saw(WM_CREATE));
    EXPECT_EQ(SendMessageW(window, kProbe, 0, 0), kHandled);
}

TEST(BaseWindowBinding, WmCreateWithoutAnObjectBindsNothingAndCreationGoesOn)
{
    HWND window = makeWindow(kBoundClass, nullptr);
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(GetWindowLongPtrW(window, GWLP_USERDATA), 0);
    EXPECT_EQ(SendMessageW(window, kProbe, 0, 0), 0) << "DefWindowProcW answers";
    DestroyWindow(window);
}

TEST(BaseWindowBinding, AfterDetachMessagesReachDefWindowProc)
{
    RecordingWindow object;
    HWND window = makeWindow(kBoundClass, &object);
    ASSERT_NE(window, nullptr);
    object.detach();
    object.seen.clear();

    EXPECT_FALSE(object.isAttached());
    EXPECT_EQ(GetWindowLongPtrW(window, GWLP_USERDATA), 0);
    EXPECT_EQ(SendMessageW(window, kProbe, 0, 0), 0);
    SendMessageW(window, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L"set by DefWindowProcW"));
    EXPECT_EQ(windowText(window), L"set by DefWindowProcW");
    EXPECT_TRUE(object.seen.empty());
    DestroyWindow(window);
}

TEST(BaseWindowBinding, AttachSubclassesAndDetachPutsTheOldProcedureBack)
{
    HWND window = makeWindow(kPlainClass);
    ASSERT_NE(window, nullptr);
    RecordingWindow object;
    object.attach(window);
    EXPECT_EQ(SendMessageW(window, kProbe, 0, 0), kHandled);
    object.attach(window); // already attached here: nothing changes
    EXPECT_EQ(SendMessageW(window, kProbe, 0, 0), kHandled);

    object.detach();
    EXPECT_EQ(procedureOf(window), &plainProc);
    EXPECT_EQ(SendMessageW(window, kProbe, 0, 0), kPlainAnswer);

    object.reattach();
    EXPECT_EQ(SendMessageW(window, kProbe, 0, 0), kHandled);
    object.detach();
    DestroyWindow(window);
}

LRESULT CALLBACK laterSubclass(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    return DefWindowProcW(window, message, wParam, lParam);
}

TEST(BaseWindowBinding, DetachLeavesAProcedureInstalledOnTopOfOurs)
{
    HWND window = makeWindow(kPlainClass);
    RecordingWindow object;
    object.attach(window);
    SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&laterSubclass));
    object.detach();
    EXPECT_EQ(procedureOf(window), &laterSubclass);
    EXPECT_FALSE(object.isAttached());
    DestroyWindow(window);
}

TEST(BaseWindowBinding, AttachingElsewhereReleasesTheFirstWindow)
{
    HWND first = makeWindow(kPlainClass);
    HWND second = makeWindow(kPlainClass);
    RecordingWindow object;
    object.attach(first);
    object.attach(second);
    EXPECT_EQ(procedureOf(first), &plainProc);
    EXPECT_EQ(GetWindowLongPtrW(first, GWLP_USERDATA), 0);
    EXPECT_EQ(SendMessageW(second, kProbe, 0, 0), kHandled);

    object.setHandle(first); // no subclassing
    EXPECT_EQ(procedureOf(second), &plainProc);
    EXPECT_EQ(SendMessageW(first, kProbe, 0, 0), kPlainAnswer);
    DestroyWindow(first);
    DestroyWindow(second);
}

TEST(BaseWindowBinding, DestructionDestroysOnlyAWindowStillBound)
{
    HWND bound = makeWindow(kPlainClass);
    HWND released = makeWindow(kPlainClass);
    {
        RecordingWindow object;
        object.attach(bound);
    }
    EXPECT_FALSE(IsWindow(bound));
    {
        RecordingWindow object;
        object.attach(released);
        object.detach();
    }
    EXPECT_TRUE(IsWindow(released));
    DestroyWindow(released);
}

// ---------------------------------------------------------------------------------------
// Dispatch: listeners, filter, nesting and self-deletion

class LoggingListener : public BaseWindow::IMessageListener {
public:
    LoggingListener(std::string name, std::string& log) : name_(std::move(name)), log_(log) {}
    std::function<void(BaseWindow&)> then;

    void onMessage(BaseWindow& window, UINT message, WPARAM, LPARAM) override
    {
        if (message != kProbe)
            return;
        log_ += name_;
        if (then)
            then(window);
    }

private:
    std::string name_;
    std::string& log_;
};

TEST(BaseWindowDispatch, AListenerRemovingItselfDoesNotDisturbTheOthers)
{
    RecordingWindow object;
    HWND window = makeWindow(kBoundClass, &object);
    std::string log;
    LoggingListener a("a", log), b("b", log), c("c", log);
    b.then = [&](BaseWindow& w) { w.removeMessageListener(&b); };
    object.addMessageListener(&a);
    object.addMessageListener(&b);
    object.addMessageListener(&c);

    object.seen.clear();
    EXPECT_EQ(SendMessageW(window, kProbe, 0, 0), kHandled);
    EXPECT_EQ(log, "abc");
    EXPECT_TRUE(object.saw(kProbe)) << "listeners come before the handler, which still runs";
    log.clear();
    SendMessageW(window, kProbe, 0, 0);
    EXPECT_EQ(log, "ac");

    // The last listener, alone, may remove itself too.
    object.removeMessageListener(&a);
    c.then = [&](BaseWindow& w) { w.removeMessageListener(&c); };
    log.clear();
    SendMessageW(window, kProbe, 0, 0);
    SendMessageW(window, kProbe, 0, 0);
    EXPECT_EQ(log, "c");
}

class FixedFilter : public BaseWindow::IMessageFilter {
public:
    LRESULT filterMessage(BaseWindow&, UINT message, WPARAM, LPARAM) override { return message == kProbe ? 5 : 0; }
};

TEST(BaseWindowDispatch, AFilterTakesTheHandlersPlace)
{
    RecordingWindow object;
    HWND window = makeWindow(kPlainClass);
    FixedFilter filter, other;
    object.attach(window, &filter);
    object.seen.clear();
    EXPECT_EQ(SendMessageW(window, kProbe, 0, 0), 5);
    EXPECT_FALSE(object.saw(kProbe));

    object.removeMessageFilter(&other); // not the one set: stays
    EXPECT_EQ(SendMessageW(window, kProbe, 0, 0), 5);
    object.removeMessageFilter(&filter);
    EXPECT_EQ(SendMessageW(window, kProbe, 0, 0), kHandled);
}

TEST(BaseWindowDispatch, TheObjectMayBeDeletedByItsOwnHandlerOrAListener)
{
    {
        ScribbledWindow scribbled;
        HWND window = makeWindow(kBoundClass, &scribbled.window());
        scribbled.window().onMessage = [&](UINT message) {
            if (message == kProbe)
                scribbled.destroy();
        };
        SendMessageW(window, kProbe, 0, 0);
        EXPECT_FALSE(scribbled.alive());
        EXPECT_FALSE(IsWindow(window)) << "the destructor destroys the bound window";
    }
    {
        ScribbledWindow scribbled;
        HWND window = makeWindow(kBoundClass, &scribbled.window());
        std::string log;
        LoggingListener deleter("d", log), after("a", log);
        deleter.then = [&](BaseWindow&) { scribbled.destroy(); };
        scribbled.window().addMessageListener(&deleter);
        scribbled.window().addMessageListener(&after);
        SendMessageW(window, kProbe, 0, 0);
        EXPECT_EQ(log, "d") << "nothing more is handed the deleted object";
        EXPECT_FALSE(IsWindow(window));
    }
}

TEST(BaseWindowDispatch, ANestedDestructionKeepsTheHandleUntilTheOutermostMessageReturns)
{
    RecordingWindow object;
    HWND window = makeWindow(kBoundClass, &object);
    HWND handleAfterNested = nullptr;
    bool attachedAfterNested = true;
    object.onMessage = [&](UINT message) {
        if (message != kProbe)
            return;
        object.sendMessage(WM_CLOSE); // DefWindowProcW destroys the window
        handleAfterNested = object.handle();
        attachedAfterNested = object.isAttached();
    };
    SendMessageW(window, kProbe, 0, 0);
    EXPECT_TRUE(object.saw(WM_NCDESTROY));
    EXPECT_EQ(handleAfterNested, window);
    EXPECT_FALSE(attachedAfterNested);
    EXPECT_EQ(object.handle(), nullptr);
    EXPECT_FALSE(IsWindow(window));
}

// ---------------------------------------------------------------------------------------
// Modal loop

// Runs `action` once on this thread, from its message loop, after `milliseconds`.
void after(UINT milliseconds, std::function<void()> action)
{
    static std::function<void()> pending;
    pending = std::move(action);
    SetTimer(nullptr, 0, milliseconds, [](HWND, UINT, UINT_PTR id, DWORD) {
        KillTimer(nullptr, id);
        auto run = std::move(pending);
        run();
    });
}

// Ends a modal loop that nothing else ends, so that a fault fails the test instead of hanging it.
class Deadline {
public:
    Deadline() : timer_(SetTimer(nullptr, 0, 5000, [](HWND, UINT, UINT_PTR, DWORD) {
        expired() = true;
        PostQuitMessage(0);
    }))
    {
        expired() = false;
    }
    ~Deadline() { KillTimer(nullptr, timer_); }
    static bool& expired()
    {
        static bool value = false;
        return value;
    }

private:
    UINT_PTR timer_;
};

TEST(BaseWindowModal, ReturnsAtOnceForAChildWindow)
{
    HWND parent = makeWindow(kPlainClass);
    RecordingWindow child;
    ASSERT_NE(makeWindow(kBoundClass, &child, parent, WS_CHILD | WS_VISIBLE), nullptr);
    Deadline deadline;
    const DWORD start = GetTickCount();
    child.makeModal();
    EXPECT_LT(GetTickCount() - start, 1000u);
    EXPECT_FALSE(Deadline::expired());
    EXPECT_TRUE(IsWindowEnabled(parent));
    DestroyWindow(parent);
}

TEST(BaseWindowModal, TheOwnerIsDisabledMeanwhileAndEnabledAfterOnlyIfItWasBefore)
{
    for (bool enabledBefore : {true, false}) {
        HWND owner = makeWindow(kPlainClass);
        EnableWindow(owner, enabledBefore);
        RecordingWindow dialog;
        makeWindow(kBoundClass, &dialog, owner);
        bool enabledDuring = true;
        after(50, [&] {
            enabledDuring = IsWindowEnabled(owner);
            dialog.destroy();
        });
        Deadline deadline;
        dialog.makeModal();
        EXPECT_FALSE(Deadline::expired());
        EXPECT_FALSE(enabledDuring) << enabledBefore;
        EXPECT_EQ(IsWindowEnabled(owner) != FALSE, enabledBefore);
        DestroyWindow(owner);
    }
}

TEST(BaseWindowModal, EndsOnDestructionOnEndModalAndOnQuit)
{
    struct Ending {
        const char* name;
        std::function<void(RecordingWindow&)> end;
        bool windowStays;
    };
    const Ending endings[] = {
        {"destruction", [](RecordingWindow& w) { w.destroy(); }, false},
        {"endModal", [](RecordingWindow& w) { w.endModal(); }, true},
        {"WM_QUIT", [](RecordingWindow&) { PostQuitMessage(0); }, true},
    };
    for (const Ending& ending : endings) {
        RecordingWindow dialog;
        HWND window = makeWindow(kBoundClass, &dialog);
        after(50, [&] { ending.end(dialog); });
        Deadline deadline;
        dialog.makeModal();
        EXPECT_FALSE(Deadline::expired()) << ending.name;
        EXPECT_EQ(IsWindow(window) != FALSE, ending.windowStays) << ending.name;
        DestroyWindow(window);
    }
}

TEST(BaseWindowModal, TheObjectMayGoAwayInsideItsOwnLoop)
{
    HWND owner = makeWindow(kPlainClass);
    ScribbledWindow scribbled;
    HWND window = makeWindow(kBoundClass, &scribbled.window(), owner);
    after(50, [&] { scribbled.destroy(); });
    Deadline deadline;
    scribbled.window().makeModal();
    EXPECT_FALSE(Deadline::expired());
    EXPECT_FALSE(IsWindow(window));
    EXPECT_TRUE(IsWindowEnabled(owner));
    DestroyWindow(owner);
}

} // namespace
