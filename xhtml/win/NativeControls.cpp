#include "xhtml/win/NativeControls.h"

#include "base/win/ScreenDpi.h"

namespace xhtml {

namespace {

constexpr int kFirstId = 1000;
constexpr int kDropDownRoom = 240; // the height of an open drop-down list at 96 DPI

struct NativeKind {
    const wchar_t* className;
    DWORD style;
    DWORD exStyle;
};

NativeKind nativeKind(const ControlModel& control)
{
    const DWORD edit = static_cast<DWORD>(WS_TABSTOP | ES_AUTOHSCROLL | (control.readOnly ? ES_READONLY : 0));
    switch (control.type) {
    case ControlType::button:
        return {L"BUTTON", WS_TABSTOP | BS_PUSHBUTTON, 0};
    case ControlType::checkbox:
        return {L"BUTTON", WS_TABSTOP | BS_AUTOCHECKBOX, 0};
    case ControlType::radio:
        return {L"BUTTON", WS_TABSTOP | BS_RADIOBUTTON, 0};
    case ControlType::password:
        return {L"EDIT", edit | ES_PASSWORD, WS_EX_CLIENTEDGE};
    case ControlType::textarea:
        return {L"EDIT", static_cast<DWORD>(WS_TABSTOP | WS_VSCROLL | ES_MULTILINE | ES_WANTRETURN | ES_AUTOVSCROLL
                                            | (control.readOnly ? ES_READONLY : 0)),
                WS_EX_CLIENTEDGE};
    case ControlType::select:
        if (control.isList())
            return {L"LISTBOX", static_cast<DWORD>(WS_TABSTOP | WS_VSCROLL | LBS_NOTIFY | LBS_NOINTEGRALHEIGHT
                                                   | (control.multiple ? LBS_EXTENDEDSEL : 0)),
                    WS_EX_CLIENTEDGE};
        return {L"COMBOBOX", WS_TABSTOP | WS_VSCROLL | CBS_DROPDOWNLIST, 0};
    default:
        return {L"EDIT", edit, WS_EX_CLIENTEDGE};
    }
}

// Multi-line edits want CR LF.
std::wstring withCrLf(const ZString& text)
{
    std::wstring out;
    for (ZChar unit : text.units()) {
        if (unit == '\n' && (out.empty() || out.back() != '\r'))
            out.push_back(L'\r');
        out.push_back(unit);
    }
    return out;
}

ZString windowTextOf(HWND window)
{
    const int length = GetWindowTextLengthW(window);
    std::wstring text(static_cast<size_t>(length) + 1, L'\0');
    GetWindowTextW(window, text.data(), length + 1);
    return ZString(text.c_str());
}

} // namespace

void NativeControls::destroyAll()
{
    for (const Entry& entry : entries_) {
        if (IsWindow(entry.window))
            DestroyWindow(entry.window);
    }
    entries_.clear();
}

HWND NativeControls::create(View& view, int id)
{
    const ControlModel& control = *view.control;
    const NativeKind kind = nativeKind(control);
    const std::wstring text = control.type == ControlType::textarea ? withCrLf(control.value) : control.value.c_str();
    const bool showsText = control.type == ControlType::button || control.type == ControlType::text
                           || control.type == ControlType::password || control.type == ControlType::file
                           || control.type == ControlType::textarea;
    return CreateWindowExW(kind.exStyle, kind.className, showsText ? text.c_str() : L"", WS_CHILD | kind.style, 0, 0, 0, 0,
                           parent_, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)),
                           reinterpret_cast<HINSTANCE>(GetWindowLongPtrW(parent_, GWLP_HINSTANCE)), nullptr);
}

void NativeControls::fill(const Entry& entry)
{
    const ControlModel& control = *entry.view->control;
    if (control.type == ControlType::checkbox || control.type == ControlType::radio)
        SendMessageW(entry.window, BM_SETCHECK, control.checked ? BST_CHECKED : BST_UNCHECKED, 0);
    if (control.type != ControlType::select)
        return;
    const bool list = control.isList();
    for (const SelectOption& option : control.options)
        SendMessageW(entry.window, list ? LB_ADDSTRING : CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(option.label.c_str()));
    showSelection(*entry.view);
}

void NativeControls::rebuild(ViewTree& views)
{
    destroyAll();
    int id = kFirstId;
    views.forEach([&](View& view) {
        if (view.kind != ViewKind::control || !view.control || view.control->type == ControlType::hidden)
            return;
        HWND window = create(view, id++);
        if (!window)
            return;
        entries_.push_back(Entry{&view, window});
        fill(entries_.back());
    });
    refreshFonts();
}

void NativeControls::refreshFonts()
{
    for (const Entry& entry : entries_) {
        SendMessageW(entry.window, WM_SETFONT, reinterpret_cast<WPARAM>(fonts_.font(entry.view->style.font)), FALSE);
        EnableWindow(entry.window, !entry.view->control->disabled);
    }
}

void NativeControls::place()
{
    for (const Entry& entry : entries_) {
        const View& view = *entry.view;
        bool shown = view.isDisplayed() && view.style.visible && !view.box.isEmpty();
        for (const View* up = view.parent; up && shown; up = up->parent)
            shown = up->isDisplayed();
        const Rect& box = view.box;
        if (view.control->type == ControlType::select && !view.control->isList()) {
            // The window's height is its open height; the closed field takes the box. The list
            // grows with the screen's DPI like its rows, so that it shows as many of them.
            MoveWindow(entry.window, box.x, box.y, box.width, box.height + kDropDownRoom * screenDpi() / 96, FALSE);
            SendMessageW(entry.window, CB_SETITEMHEIGHT, static_cast<WPARAM>(-1), box.height - 6);
        } else {
            MoveWindow(entry.window, box.x, box.y, box.width, box.height, FALSE);
        }
        ShowWindow(entry.window, shown ? SW_SHOWNA : SW_HIDE);
        InvalidateRect(entry.window, nullptr, TRUE);
    }
}

NativeControls::Entry* NativeControls::entryOf(HWND window)
{
    for (Entry& entry : entries_) {
        if (entry.window == window)
            return &entry;
    }
    return nullptr;
}

HWND NativeControls::windowOf(const View& view) const
{
    for (const Entry& entry : entries_) {
        if (entry.view == &view)
            return entry.window;
    }
    return nullptr;
}

std::vector<HWND> NativeControls::windows() const
{
    std::vector<HWND> all;
    for (const Entry& entry : entries_)
        all.push_back(entry.window);
    return all;
}

void NativeControls::showSelection(const View& select)
{
    HWND window = windowOf(select);
    const ControlModel& control = *select.control;
    if (!window || control.type != ControlType::select)
        return;
    if (control.isList()) {
        for (size_t i = 0; i < control.options.size(); ++i) {
            if (control.multiple)
                SendMessageW(window, LB_SETSEL, control.options[i].selected, static_cast<LPARAM>(i));
            else if (control.options[i].selected)
                SendMessageW(window, LB_SETCURSEL, i, 0);
        }
        return;
    }
    SendMessageW(window, CB_SETCURSEL, static_cast<WPARAM>(control.shownIndex()), 0);
}

void NativeControls::showState(const View& view)
{
    HWND window = windowOf(view);
    const ControlModel& control = *view.control;
    if (!window || control.type == ControlType::button)
        return;
    if (control.type == ControlType::select) {
        showSelection(view);
    } else if (control.isCheckable()) {
        SendMessageW(window, BM_SETCHECK, control.checked ? BST_CHECKED : BST_UNCHECKED, 0);
    } else {
        const std::wstring text = control.type == ControlType::textarea ? withCrLf(control.value) : control.value.c_str();
        SetWindowTextW(window, text.c_str());
    }
}

void NativeControls::readBack(View& view)
{
    HWND window = windowOf(view);
    ControlModel& control = *view.control;
    if (!window)
        return;
    switch (control.type) {
    case ControlType::checkbox:
    case ControlType::radio:
        control.checked = SendMessageW(window, BM_GETCHECK, 0, 0) == BST_CHECKED;
        break;
    case ControlType::select:
        if (control.multiple) {
            for (size_t i = 0; i < control.options.size(); ++i)
                control.options[i].selected = SendMessageW(window, LB_GETSEL, i, 0) > 0;
        } else {
            const LRESULT index = SendMessageW(window, control.isList() ? LB_GETCURSEL : CB_GETCURSEL, 0, 0);
            if (index >= 0)
                control.selectOnly(static_cast<int>(index));
        }
        break;
    case ControlType::button:
        break;
    default:
        control.value = windowTextOf(window);
        break;
    }
}

// Radio buttons of one name form a group: checking one unchecks the others.
void NativeControls::checkRadio(const Entry& clicked)
{
    for (Entry& entry : entries_) {
        ControlModel& control = *entry.view->control;
        if (control.type != ControlType::radio || control.name != clicked.view->control->name)
            continue;
        control.checked = &entry == &clicked;
        SendMessageW(entry.window, BM_SETCHECK, control.checked ? BST_CHECKED : BST_UNCHECKED, 0);
    }
}

bool NativeControls::onCommand(WPARAM wParam, LPARAM lParam, ButtonListener* listener)
{
    Entry* entry = entryOf(reinterpret_cast<HWND>(lParam));
    if (!entry)
        return false;
    const ControlModel& control = *entry->view->control;
    const UINT code = HIWORD(wParam);
    if (control.type == ControlType::radio && code == BN_CLICKED) {
        checkRadio(*entry);
        return true;
    }
    readBack(*entry->view);
    if (control.type == ControlType::button && code == BN_CLICKED && listener) {
        // The listener may close the window and destroy this object: copy the name first.
        const ZString name = control.name;
        listener->onButtonPressed(name);
    }
    return true;
}

} // namespace xhtml
