#include "base/win/BaseWindow.h"
#include "base/win/IMessageFilter.h"
#include "base/win/IMessageListener.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <new>
#include <string>
#include <utility>
#include <vector>

namespace {

// Answered with 42 by RecordingWindow's handler, 7 by the plain class, 0 by DefWindowProcW.
constexpr UINT kProbe = WM_APP + 1;
constexpr LRESULT kHandled = 42;
constexpr LRESULT kPlainAnswer = 7;

const wchar_t* const kBoundClass = L"PryxaBaseWindowTestBound"; // procedure: BaseWindow::windowProc
const wchar_t* const kPlainClass = L"PryxaBaseWindowTestPlain"; // a procedure of its own

LRESULT CALLBACK plainProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    return message == kProbe ? kPlainAnswer : DefWindowProcW(window, message, wParam, lParam);
}

HWND makeWindow(const wchar_t* className, void* parameter = nullptr, HWND parent = nullptr, DWORD style = WS_POPUP)
{
    for (const auto& [name, proc] : {std::pair{kBoundClass, &BaseWindow::windowProc}, {kPlainClass, &plainProc}}) {
        WNDCLASSW windowClass = {};
        windowClass.lpfnWndProc = proc;
        windowClass.hInstance = GetModuleHandleW(nullptr);
        windowClass.lpszClassName = name;
        RegisterClassW(&windowClass); // fails harmlessly after the first time
    }
    return CreateWindowExW(0, className, L"", style, 10, 10, 100, 100, parent, nullptr, GetModuleHandleW(nullptr),
                           parameter);
}

LRESULT probe(HWND window)
{
    return SendMessageW(window, kProbe, 0, 0);
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

// A RecordingWindow whose deletion scribbles over its memory, so that any later use of the
// object crashes.
struct ScribbledWindow {
    alignas(RecordingWindow) unsigned char storage[sizeof(RecordingWindow)];
    RecordingWindow* window = new (storage) RecordingWindow();

    ~ScribbledWindow()
    {
        if (window)
            window->~RecordingWindow();
    }
    void destroy()
    {
        std::exchange(window, nullptr)->~RecordingWindow();
        std::memset(storage, 0xCD, sizeof storage);
    }
};

TEST(BaseWindowBinding, WithoutAnObjectOrAfterDetachMessagesReachDefWindowProc)
{
    HWND unbound = makeWindow(kBoundClass);
    EXPECT_EQ(probe(unbound), 0) << "creation goes on without an object";
    DestroyWindow(unbound);

    HWND window = nullptr;
    {
        RecordingWindow object;
        window = makeWindow(kBoundClass, &object);
        EXPECT_TRUE(object.saw(WM_CREATE));
        EXPECT_EQ(probe(window), kHandled);
        object.detach();
        object.seen.clear();
        EXPECT_EQ(probe(window), 0);
        EXPECT_TRUE(object.seen.empty());
    }
    EXPECT_TRUE(IsWindow(window)) << "a detached window outlives its object";
    DestroyWindow(window);
}

TEST(BaseWindowBinding, AttachSubclassesAndDetachOrAttachingElsewhereUndoesIt)
{
    HWND first = makeWindow(kPlainClass);
    HWND second = makeWindow(kPlainClass);
    RecordingWindow object;
    object.attach(first);
    object.attach(first); // a second subclassing would keep our own procedure as the original
    object.detach();
    EXPECT_EQ(probe(first), kPlainAnswer);
    object.reattach();
    EXPECT_EQ(probe(first), kHandled);
    object.attach(second);
    EXPECT_EQ(probe(first), kPlainAnswer);
    EXPECT_EQ(probe(second), kHandled);

    // A procedure installed on top of ours stays where it is.
    const WNDPROC later = [](HWND w, UINT m, WPARAM wp, LPARAM lp) -> LRESULT { return DefWindowProcW(w, m, wp, lp); };
    SetWindowLongPtrW(second, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(later));
    object.detach();
    EXPECT_EQ(reinterpret_cast<WNDPROC>(GetWindowLongPtrW(second, GWLP_WNDPROC)), later);
    DestroyWindow(first);
    DestroyWindow(second);
}

// Adds its name to `log` for each kProbe, then runs `then`.
struct LoggingListener : BaseWindow::IMessageListener {
    LoggingListener(const char* name, std::string& log) : name(name), log(log) {}
    void onMessage(BaseWindow& window, UINT message, WPARAM, LPARAM) override
    {
        if (message == kProbe) {
            log += name;
            then(window);
        }
    }
    const char* name;
    std::string& log;
    std::function<void(BaseWindow&)> then = [](BaseWindow&) {};
};

struct FixedFilter : BaseWindow::IMessageFilter {
    LRESULT filterMessage(BaseWindow&, UINT message, WPARAM, LPARAM) override { return message == kProbe ? 5 : 0; }
};

TEST(BaseWindowDispatch, ListenersMayRemoveThemselvesAndAFilterTakesTheHandlersPlace)
{
    RecordingWindow object;
    HWND window = makeWindow(kBoundClass, &object);
    std::string log;
    LoggingListener a("a", log), b("b", log), c("c", log);
    b.then = [&](BaseWindow& w) { w.removeMessageListener(&b); };
    object.addMessageListener(&a);
    object.addMessageListener(&b);
    object.addMessageListener(&c);
    EXPECT_EQ(probe(window), kHandled);
    probe(window);
    EXPECT_EQ(log, "abcac");

    FixedFilter filter;
    object.attach(window, &filter);
    object.seen.clear();
    EXPECT_EQ(probe(window), 5);
    EXPECT_FALSE(object.saw(kProbe));
    object.removeMessageFilter(&filter);
    EXPECT_EQ(probe(window), kHandled);
}

TEST(BaseWindowDispatch, TheObjectMayBeDeletedByItsOwnHandlerOrAListener)
{
    for (bool byListener : {false, true}) {
        ScribbledWindow scribbled;
        HWND window = makeWindow(kBoundClass, scribbled.window);
        std::string log;
        LoggingListener deleter("d", log), other("o", log);
        deleter.then = [&](BaseWindow&) { scribbled.destroy(); };
        if (byListener)
            scribbled.window->addMessageListener(&deleter);
        else
            scribbled.window->onMessage = [&](UINT message) {
                if (message == kProbe)
                    scribbled.destroy();
            };
        scribbled.window->addMessageListener(&other);
        probe(window);
        EXPECT_EQ(log, byListener ? "d" : "o") << "nothing more is handed the deleted object";
        EXPECT_FALSE(IsWindow(window)) << "the destructor destroys the bound window";
    }
}

TEST(BaseWindowDispatch, ANestedDestructionKeepsTheHandleUntilTheOutermostMessageReturns)
{
    RecordingWindow object;
    HWND window = makeWindow(kBoundClass, &object);
    HWND handleAfterNested = nullptr;
    object.onMessage = [&](UINT message) {
        if (message == kProbe) {
            object.sendMessage(WM_CLOSE); // DefWindowProcW destroys the window
            handleAfterNested = object.handle();
        }
    };
    probe(window);
    EXPECT_EQ(handleAfterNested, window);
    EXPECT_EQ(object.handle(), nullptr);
}

// Runs `window`'s modal loop, running `action` once from it. A deadline ends a loop that
// nothing else ends, so that a fault fails the test instead of hanging it: false then.
bool modalLoopEnds(BaseWindow& window, std::function<void()> action)
{
    static std::function<void()> pending;
    static bool expired;
    pending = std::move(action);
    expired = false;
    const UINT_PTR actionTimer = SetTimer(nullptr, 0, 50, [](HWND, UINT, UINT_PTR id, DWORD) {
        KillTimer(nullptr, id);
        std::exchange(pending, nullptr)();
    });
    const UINT_PTR deadline = SetTimer(nullptr, 0, 5000, [](HWND, UINT, UINT_PTR, DWORD) {
        expired = true;
        PostQuitMessage(0);
    });
    window.makeModal();
    KillTimer(nullptr, actionTimer);
    KillTimer(nullptr, deadline);
    return !expired;
}

TEST(BaseWindowModal, ReturnsAtOnceForAChildWindow)
{
    HWND parent = makeWindow(kPlainClass);
    RecordingWindow child;
    makeWindow(kBoundClass, &child, parent, WS_CHILD | WS_VISIBLE);
    EXPECT_TRUE(modalLoopEnds(child, [] {})) << "only the deadline ends a loop that started";
    EXPECT_TRUE(IsWindowEnabled(parent));
    DestroyWindow(parent);
}

// Each way out, with the owner enabled or disabled before: it is disabled meanwhile and
// enabled after only if it was before.
TEST(BaseWindowModal, EndsOnDestructionEndModalQuitOrDeletionAndLeavesTheOwnerAsItWas)
{
    struct Ending {
        const char* name;
        void (*end)(ScribbledWindow&);
        bool windowStays;
    };
    const Ending endings[] = {
        {"destruction", [](ScribbledWindow& w) { w.window->destroy(); }, false},
        {"endModal", [](ScribbledWindow& w) { w.window->endModal(); }, true},
        {"WM_QUIT", [](ScribbledWindow&) { PostQuitMessage(0); }, true},
        {"deleting the object", [](ScribbledWindow& w) { w.destroy(); }, false},
    };
    for (const Ending& ending : endings) {
        for (bool ownerEnabled : {true, false}) {
            HWND owner = makeWindow(kPlainClass);
            EnableWindow(owner, ownerEnabled);
            ScribbledWindow dialog;
            HWND window = makeWindow(kBoundClass, dialog.window, owner);
            bool enabledDuring = true;
            EXPECT_TRUE(modalLoopEnds(*dialog.window, [&] {
                enabledDuring = IsWindowEnabled(owner);
                ending.end(dialog);
            })) << ending.name;
            EXPECT_FALSE(enabledDuring) << ending.name;
            EXPECT_EQ(IsWindowEnabled(owner) != FALSE, ownerEnabled) << ending.name << " " << ownerEnabled;
            EXPECT_EQ(IsWindow(window) != FALSE, ending.windowStays) << ending.name;
            DestroyWindow(owner); // and the window it owns
        }
    }
}

} // namespace
