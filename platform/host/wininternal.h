// What the window units of the host share: the window objects and their table, the dialog
// and control state, and the hooks between windows, dialogs, controls and the user simulation.
//
// Window procedures are never called with StateMutex() held: a procedure may run for as long
// as a modal dialog does, and other threads of the driver must reach the host meanwhile. The
// table is locked only to look a window up; the shared_ptr keeps the object alive across the
// call even when the procedure destroys its window.
#pragma once

#include "hostinternal.h"

#include <deque>
#include <optional>
#include <memory>
#include <string>
#include <vector>

namespace host::detail {

// Fixed dialog base units: "MS Shell Dlg" 8 pt at 96 DPI.
constexpr int kBaseUnitX = 6;
constexpr int kBaseUnitY = 13;

enum class ControlKind
{
    None,
    Button,
    Edit,
    Static,
    ComboBox,
    ListBox,
    UpDown,
    Trackbar,
    Dialog
};

struct ListItem
{
    std::u16string text;
    LONG_PTR data = 0;
};

struct ControlData
{
    // Button
    int check = BST_UNCHECKED;
    bool pushed = false;
    HANDLE image = nullptr;
    // Edit
    DWORD limit = 30000;
    DWORD selStart = 0, selEnd = 0;
    bool modified = false;
    // Combo box and list box
    std::vector<ListItem> items;
    int selection = -1;
    HWND edit = nullptr;    // a drop-down combo box's edit
    bool quietEdit = false; // the combo box is setting its edit's text itself
    // Up-down and trackbar
    int position = 0;
    int rangeMin = 0, rangeMax = 100;
    int pageSize = 20, lineSize = 1, ticFrequency = 1;
    bool userPageSize = false; // TBM_SETPAGESIZE was sent: the range no longer sets it
    int base = 10;
    HWND buddy = nullptr;
    // Static
    HANDLE icon = nullptr;
    WORD resourceId = 0; // the ordinal an image static's template named
};

struct DialogData
{
    DLGPROC proc = nullptr;
    LONG_PTR msgResult = 0;
    LONG_PTR user = 0;
    bool ended = false;
    INT_PTR result = 0;
    std::u16string templateName; // "217" or the name, for the dump
    int defId = IDOK;
    HFONT font = nullptr; // the template's font, deleted with the dialog
};

struct Window
{
    HWND handle = nullptr;
    std::u16string className;
    ControlKind kind = ControlKind::None;
    WNDPROC proc = nullptr;
    HINSTANCE instance = nullptr;
    HWND parent = nullptr;      // children
    HWND owner = nullptr;       // top-level windows
    std::vector<HWND> children; // z-order, first on top
    DWORD style = 0, exStyle = 0;
    LONG_PTR id = 0;
    LONG_PTR userData = 0;
    std::u16string text;
    RECT rect{}; // in the parent's client coordinates; on the screen for top-level windows
    HANDLE font = nullptr;
    std::vector<uint8_t> extra;
    bool destroying = false;
    bool maximized = false, minimized = false;
    ControlData control;
    std::unique_ptr<DialogData> dialog;
};

using WindowPtr = std::shared_ptr<Window>;

// The live window of a handle, or null (the last error is ERROR_INVALID_WINDOW_HANDLE).
WindowPtr FindWindowObject(HWND hwnd);
WindowPtr FindWindowQuiet(HWND hwnd);

// A name or an ordinal of a template (0xFFFF then the number).
struct SzOrOrd
{
    bool ordinal = false;
    WORD id = 0;
    std::u16string text;
};

// Reads a resource template front to back (dialogs, menus) and refuses to step past its end;
// alignment is relative to the template's start.
class TemplateReader
{
public:
    TemplateReader(const uint8_t* data, size_t size) : data_(data), size_(size) {}
    bool Read(void* out, size_t n)
    {
        if (!ok_ || n > size_ - pos_) {
            ok_ = false;
            return false;
        }
        std::memcpy(out, data_ + pos_, n);
        pos_ += n;
        return true;
    }
    WORD Word()
    {
        WORD v = 0;
        Read(&v, 2);
        return v;
    }
    DWORD Dword()
    {
        DWORD v = 0;
        Read(&v, 4);
        return v;
    }
    short Short() { return short(Word()); }
    BYTE Byte()
    {
        BYTE v = 0;
        Read(&v, 1);
        return v;
    }
    std::u16string String()
    {
        std::u16string s;
        for (;;) {
            WORD c = Word();
            if (!ok_ || c == 0) {
                return s;
            }
            if (s.size() > 0x10000) {
                ok_ = false;
                return s;
            }
            s.push_back(char16_t(c));
        }
    }
    SzOrOrd Name()
    {
        SzOrOrd n;
        WORD first = Word();
        if (first == 0xFFFF) {
            n.ordinal = true;
            n.id = Word();
        } else if (first != 0) {
            n.text.push_back(char16_t(first));
            n.text += String();
        }
        return n;
    }
    void AlignDword()
    {
        size_t aligned = (pos_ + 3) & ~size_t(3);
        if (aligned > size_) {
            ok_ = false;
            return;
        }
        pos_ = aligned;
    }
    void Skip(size_t n)
    {
        if (!ok_ || n > size_ - pos_) {
            ok_ = false;
            return;
        }
        pos_ += n;
    }
    bool ok() const { return ok_; }

private:
    const uint8_t* data_;
    size_t size_;
    size_t pos_ = 0;
    bool ok_ = true;
};

// The procedures of the predefined classes, in controls.cpp.
LRESULT CALLBACK ButtonProc(HWND, UINT, WPARAM, LPARAM);
LRESULT CALLBACK EditProc(HWND, UINT, WPARAM, LPARAM);
LRESULT CALLBACK StaticProc(HWND, UINT, WPARAM, LPARAM);
LRESULT CALLBACK ComboBoxProc(HWND, UINT, WPARAM, LPARAM);
LRESULT CALLBACK ListBoxProc(HWND, UINT, WPARAM, LPARAM);
LRESULT CALLBACK UpDownProc(HWND, UINT, WPARAM, LPARAM);
LRESULT CALLBACK TrackbarProc(HWND, UINT, WPARAM, LPARAM);
LRESULT CALLBACK DialogWindowProc(HWND, UINT, WPARAM, LPARAM);

// Sends WM_COMMAND(id, code) from a control to its parent.
void NotifyParent(HWND control, WORD code);
// The up-down's position from its buddy's text, as UDM_GETPOS reads it; false when the text
// is not a number within the range.
bool ReadBuddyPosition(HWND updown, int* position);

// A person's spin of an up-down (UDN_DELTAPOS first, which the parent may refuse) and drag of
// a trackbar's thumb to a position (WM_HSCROLL/WM_VSCROLL as the thumb moves and is released).
bool SpinUpDown(HWND updown, bool up);
void SlideTrackbar(HWND trackbar, int position);

// Posted messages, delivered by modal loops.
bool DispatchPostedMessage();

// A dialog's creation from template bytes (bounds-checked against size): what
// CreateDialogIndirectParamW and the property sheet use. Null with the last error set.
HWND CreateDialogFromTemplate(HINSTANCE instance, const uint8_t* data, size_t size, HWND parent,
                              DLGPROC proc, LPARAM param, const std::u16string& name);
// A menu from template bytes (normal or extended, bounds-checked against size): what LoadMenuW
// uses. Null with ERROR_INVALID_PARAMETER when the template is damaged.
HMENU LoadMenuFromTemplate(const uint8_t* data, size_t size);
// Runs a modal loop on a created dialog until EndDialog; returns its result.
INT_PTR RunModal(HWND dialog);

// The user simulation's part of a person's Esc/Enter: clicks the button of id when present
// and enabled, else sends WM_COMMAND(id) as the keyboard would. False when the button is
// there but cannot be clicked.
bool PressDialogButton(HWND dialog, int id);

// The answer of the script for a message box of this text and these buttons, if its next action
// is `answer`: true with *answer set (the box's default when the answer is not a button of it).
// A text the answer expects and the message lacks is a failure of the script.
bool TakeScriptedMessageBoxAnswer(const std::u16string& text, const std::vector<int>& buttons,
                                  int defaultButton, int* answer);
// The script's next `file` action: true with *path empty for `file cancel`.
bool TakeScriptedFile(std::optional<std::u16string>* path);

} // namespace host::detail
