#include "base/win/BaseWindow.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <new>
#include <utility>
#include <vector>

namespace {

// Answered with 42 by RecordingWindow's handler, 0 by DefWindowProcW.
constexpr UINT kProbe = WM_APP + 1;
constexpr LRESULT kHandled = 42;

// A window of the class whose procedure is BaseWindow::windowProc, else of `className`.
HWND makeWindow(void* parameter = nullptr, HWND parent = nullptr, DWORD style = WS_POPUP,
                const wchar_t* className = L"PryxaBaseWindowTest")
{
    WNDCLASSW windowClass = {};
    windowClass.lpfnWndProc = &BaseWindow::windowProc;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = L"PryxaBaseWindowTest";
    RegisterClassW(&windowClass); // fails harmlessly after the first time
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

// Creation goes on without an object; the window is then left to DefWindowProcW.
TEST(BaseWindowBinding, BindsTheCreationParameterOnlyAndItsDestructorDestroysTheWindow)
{
    HWND unbound = makeWindow();
    EXPECT_EQ(probe(unbound), 0);
    DestroyWindow(unbound);

    HWND window = nullptr;
    {
        RecordingWindow object;
        window = makeWindow(&object);
        EXPECT_TRUE(object.saw(WM_CREATE));
        EXPECT_EQ(probe(window), kHandled);
    }
    EXPECT_FALSE(IsWindow(window));
}

TEST(BaseWindowDispatch, TheObjectMayBeDeletedByItsOwnHandler)
{
    ScribbledWindow scribbled;
    HWND window = makeWindow(scribbled.window);
    scribbled.window->onMessage = [&](UINT message) {
        if (message == kProbe)
            scribbled.destroy();
    };
    probe(window);
    EXPECT_FALSE(IsWindow(window)) << "the destructor destroys the bound window";
}

TEST(BaseWindowDispatch, ANestedDestructionKeepsTheHandleUntilTheOutermostMessageReturns)
{
    RecordingWindow object;
    HWND window = makeWindow(&object);
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
    const UINT_PTR actionTimer = SetTimer(nullptr, 0, 50, [](HWND, UINT, UINT_PTR id, DWORD) CALLBACK {
        KillTimer(nullptr, id);
        std::exchange(pending, nullptr)();
    });
    const UINT_PTR deadline = SetTimer(nullptr, 0, 5000, [](HWND, UINT, UINT_PTR, DWORD) CALLBACK {
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
    HWND parent = makeWindow(nullptr, nullptr, WS_POPUP, L"STATIC");
    RecordingWindow child;
    makeWindow(&child, parent, WS_CHILD | WS_VISIBLE);
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
            HWND owner = makeWindow(nullptr, nullptr, WS_POPUP, L"STATIC");
            EnableWindow(owner, ownerEnabled);
            ScribbledWindow dialog;
            HWND window = makeWindow(dialog.window, owner);
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
