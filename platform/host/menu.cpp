// user32's menus: menu templates (normal and extended) read bounds-checked from a module's
// RT_MENU resources, item state, and popup menus answered by the user simulation's `menu`.
#include "modules.h"
#include "wininternal.h"

#include <unordered_map>

namespace host::detail {

namespace {

struct MenuItem
{
    UINT id = 0;
    UINT type = MF_STRING;
    UINT state = 0;
    std::u16string text;
    HMENU submenu = nullptr;
};

struct Menu
{
    std::vector<MenuItem> items;
};

struct MenuTable
{
    std::unordered_map<uintptr_t, std::shared_ptr<Menu>> menus;
    uintptr_t next = 0x00600010;
};

MenuTable& Table()
{
    static auto* table = new MenuTable;
    return *table;
}

// Nesting deeper than this is a damaged template, not a menu.
constexpr int kMaxDepth = 16;

Menu* Find(HMENU menu)
{
    auto& t = Table();
    auto it = t.menus.find(reinterpret_cast<uintptr_t>(menu));
    return it == t.menus.end() ? nullptr : it->second.get();
}

HMENU NewMenu()
{
    auto& t = Table();
    auto handle = reinterpret_cast<HMENU>(t.next);
    t.next += 2;
    t.menus.emplace(reinterpret_cast<uintptr_t>(handle), std::make_shared<Menu>());
    return handle;
}

void Destroy(HMENU menu)
{
    Menu* m = Find(menu);
    if (!m) {
        return;
    }
    std::vector<HMENU> subs;
    for (auto& item : m->items) {
        if (item.submenu) {
            subs.push_back(item.submenu);
        }
    }
    Table().menus.erase(reinterpret_cast<uintptr_t>(menu));
    for (HMENU s : subs) {
        Destroy(s);
    }
}

bool ParseNormal(TemplateReader& r, HMENU menu, int depth)
{
    if (depth > kMaxDepth) {
        return false;
    }
    for (;;) {
        MenuItem item;
        WORD flags = r.Word();
        if (!(flags & MF_POPUP)) {
            item.id = r.Word();
        }
        item.text = r.String();
        if (!r.ok()) {
            return false;
        }
        item.state = flags & (MF_GRAYED | MF_DISABLED | MF_CHECKED | MF_DEFAULT);
        item.type = flags & (MF_MENUBARBREAK | MF_MENUBREAK | MF_HELP | MF_OWNERDRAW | MF_BITMAP);
        if (!(flags & MF_POPUP) && item.id == 0 && item.text.empty()) {
            item.type |= MF_SEPARATOR;
        }
        if (flags & MF_POPUP) {
            item.submenu = NewMenu();
            Find(menu)->items.push_back(item);
            if (!ParseNormal(r, item.submenu, depth + 1)) {
                return false;
            }
        } else {
            Find(menu)->items.push_back(item);
        }
        if (flags & MF_END) {
            return true;
        }
    }
}

bool ParseExtended(TemplateReader& r, HMENU menu, int depth)
{
    if (depth > kMaxDepth) {
        return false;
    }
    for (;;) {
        MenuItem item;
        r.AlignDword();
        item.type = r.Dword();
        item.state = r.Dword();
        item.id = r.Dword();
        WORD resInfo = r.Word();
        item.text = r.String();
        if (!r.ok()) {
            return false;
        }
        if (resInfo & 0x01) {
            r.AlignDword();
            r.Dword(); // the popup's help id
            item.submenu = NewMenu();
            Find(menu)->items.push_back(item);
            if (!ParseExtended(r, item.submenu, depth + 1)) {
                return false;
            }
        } else {
            Find(menu)->items.push_back(item);
        }
        if (resInfo & 0x80) {
            return r.ok();
        }
    }
}

// The item of a command (searched depth first through the submenus) or of a position.
MenuItem* FindItem(HMENU menu, UINT id, UINT flags, int depth = 0)
{
    Menu* m = Find(menu);
    if (!m || depth > kMaxDepth) {
        return nullptr;
    }
    if (flags & MF_BYPOSITION) {
        return id < m->items.size() ? &m->items[id] : nullptr;
    }
    for (auto& item : m->items) {
        if (item.submenu) {
            if (MenuItem* found = FindItem(item.submenu, id, flags, depth + 1)) {
                return found;
            }
        } else if (item.id == id && !(item.type & MF_SEPARATOR)) {
            return &item;
        }
    }
    return nullptr;
}

Menu* FindOrFail(HMENU menu)
{
    Menu* m = Find(menu);
    if (!m) {
        SetLastError(ERROR_INVALID_MENU_HANDLE);
    }
    return m;
}

} // namespace

HMENU LoadMenuFromTemplate(const uint8_t* data, size_t size)
{
    Lock lock(StateMutex());
    TemplateReader r(data, size);
    WORD version = r.Word(), offset = r.Word();
    HMENU menu = NewMenu();
    bool ok = false;
    if (version == 0 && r.ok()) {
        TemplateReader items(data + 4, size - 4);
        ok = offset == 0 && ParseNormal(items, menu, 0);
    } else if (version == 1 && r.ok()) {
        TemplateReader items(data, size);
        items.Skip(4 + size_t(offset));
        ok = ParseExtended(items, menu, 0);
    }
    if (!ok) {
        Destroy(menu);
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    return menu;
}

size_t LiveMenuCount()
{
    Lock lock(StateMutex());
    return Table().menus.size();
}

} // namespace host::detail

using namespace host::detail;

extern "C" {

HMENU WINAPI LoadMenuW(HINSTANCE hInstance, LPCWSTR lpMenuName)
{
    const uint8_t* data = nullptr;
    DWORD size = 0;
    if (!lpMenuName) {
        SetLastError(ERROR_RESOURCE_NAME_NOT_FOUND);
        return nullptr;
    }
    if (!FindResourceData(hInstance, RT_MENU, lpMenuName, kAnyLanguage, &data, &size)) {
        return nullptr;
    }
    return LoadMenuFromTemplate(data, size);
}

HMENU WINAPI CreatePopupMenu(void)
{
    Lock lock(StateMutex());
    return NewMenu();
}

BOOL WINAPI AppendMenuW(HMENU hMenu, UINT uFlags, UINT_PTR uIDNewItem, LPCWSTR lpNewItem)
{
    Lock lock(StateMutex());
    Menu* m = FindOrFail(hMenu);
    if (!m) {
        return FALSE;
    }
    MenuItem item;
    item.state = uFlags & (MF_GRAYED | MF_DISABLED | MF_CHECKED | MF_DEFAULT);
    item.type = uFlags & (MF_SEPARATOR | MF_MENUBARBREAK | MF_MENUBREAK | MF_OWNERDRAW);
    if (uFlags & MF_POPUP) {
        item.submenu = reinterpret_cast<HMENU>(uIDNewItem);
        if (!Find(item.submenu)) {
            SetLastError(ERROR_INVALID_MENU_HANDLE);
            return FALSE;
        }
    } else {
        item.id = UINT(uIDNewItem);
    }
    if (!(uFlags & (MF_SEPARATOR | MF_BITMAP | MF_OWNERDRAW)) && lpNewItem) {
        item.text = FromW(lpNewItem);
    }
    m->items.push_back(item);
    return TRUE;
}

HMENU WINAPI GetSubMenu(HMENU hMenu, int nPos)
{
    Lock lock(StateMutex());
    Menu* m = FindOrFail(hMenu);
    if (!m || nPos < 0 || size_t(nPos) >= m->items.size()) {
        return nullptr;
    }
    return m->items[size_t(nPos)].submenu;
}

int WINAPI GetMenuItemCount(HMENU hMenu)
{
    Lock lock(StateMutex());
    Menu* m = FindOrFail(hMenu);
    return m ? int(m->items.size()) : -1;
}

UINT WINAPI GetMenuItemID(HMENU hMenu, int nPos)
{
    Lock lock(StateMutex());
    Menu* m = FindOrFail(hMenu);
    if (!m || nPos < 0 || size_t(nPos) >= m->items.size() || m->items[size_t(nPos)].submenu) {
        return UINT(-1);
    }
    return m->items[size_t(nPos)].id;
}

UINT WINAPI GetMenuState(HMENU hMenu, UINT uId, UINT uFlags)
{
    Lock lock(StateMutex());
    if (!FindOrFail(hMenu)) {
        return UINT(-1);
    }
    MenuItem* item = FindItem(hMenu, uId, uFlags);
    if (!item) {
        return UINT(-1);
    }
    if (item->submenu) {
        Menu* sub = Find(item->submenu);
        return (UINT(sub ? sub->items.size() : 0) << 8) | MF_POPUP | (item->state & 0xFF);
    }
    return item->state | item->type;
}

DWORD WINAPI CheckMenuItem(HMENU hMenu, UINT uIDCheckItem, UINT uCheck)
{
    Lock lock(StateMutex());
    MenuItem* item = FindOrFail(hMenu) ? FindItem(hMenu, uIDCheckItem, uCheck) : nullptr;
    if (!item) {
        return DWORD(-1);
    }
    DWORD old = item->state & MF_CHECKED;
    item->state = (item->state & ~UINT(MF_CHECKED)) | (uCheck & MF_CHECKED);
    return old;
}

BOOL WINAPI EnableMenuItem(HMENU hMenu, UINT uIDEnableItem, UINT uEnable)
{
    Lock lock(StateMutex());
    MenuItem* item = FindOrFail(hMenu) ? FindItem(hMenu, uIDEnableItem, uEnable) : nullptr;
    if (!item) {
        return -1;
    }
    UINT old = item->state & (MF_GRAYED | MF_DISABLED);
    item->state =
        (item->state & ~UINT(MF_GRAYED | MF_DISABLED)) | (uEnable & (MF_GRAYED | MF_DISABLED));
    return BOOL(old);
}

BOOL WINAPI DestroyMenu(HMENU hMenu)
{
    Lock lock(StateMutex());
    if (!FindOrFail(hMenu)) {
        return FALSE;
    }
    Destroy(hMenu);
    return TRUE;
}

// The user's choice is the script's `menu COMMAND` when it names an enabled command item of
// this menu or its submenus; any other next action leaves the menu dismissed.
BOOL WINAPI TrackPopupMenuEx(HMENU hMenu, UINT uFlags, int, int, HWND hwnd, LPTPMPARAMS)
{
    {
        Lock lock(StateMutex());
        if (!FindOrFail(hMenu)) {
            return FALSE;
        }
    }
    if (!IsWindow(hwnd)) {
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);
        return FALSE;
    }
    if (!(uFlags & TPM_NONOTIFY)) {
        SendMessageW(hwnd, WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(hMenu), MAKELPARAM(0, FALSE));
    }
    UINT command = 0;
    host::UserAction action;
    if (host::PeekUserAction(&action) && action.verb == "menu") {
        host::TakeUserAction(&action);
        bool enabled = false;
        {
            Lock lock(StateMutex());
            MenuItem* item = FindItem(hMenu, UINT(action.number), MF_BYCOMMAND);
            enabled = item && !(item->state & (MF_GRAYED | MF_DISABLED));
        }
        if (enabled) {
            command = UINT(action.number);
        } else {
            host::RecordUserScriptFailure(action, "menu command " + std::to_string(action.number) +
                                                      " is not an enabled item of the menu");
        }
    }
    if (!command) {
        return FALSE;
    }
    if (uFlags & TPM_RETURNCMD) {
        return BOOL(command);
    }
    if (!(uFlags & TPM_NONOTIFY)) {
        SendMessageW(hwnd, WM_COMMAND, MAKEWPARAM(command, 0), 0);
    }
    return TRUE;
}

BOOL WINAPI TrackPopupMenu(HMENU hMenu, UINT uFlags, int x, int y, int, HWND hWnd, const RECT*)
{
    return TrackPopupMenuEx(hMenu, uFlags, x, y, hWnd, nullptr);
}

} // extern "C"
