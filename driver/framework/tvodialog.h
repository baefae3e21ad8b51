// TVODialog: the base of every dialog and property-sheet tab. One object is bound to one window
// of a template of the resource library; the window's messages reach the object's DialogProc.
// The base gives what all dialogs need: the selected value of a list, centring, the numeric
// key filter of edit fields, context help, locking for users without permission, enabling by
// firmware level, and the one warning box for values out of range.
#pragma once

#include "../../platform/win32.h"
#include "../devmode/devmodeex.h"
#include "../foundation/tvofixed.h"

class TVOPrinterConfiguration;

class TVODialog
{
public:
    TVODialog();
    virtual ~TVODialog();
    TVODialog(const TVODialog&) = delete;
    TVODialog& operator=(const TVODialog&) = delete;

    // The result for the system's dialog procedure.
    virtual INT_PTR DialogProc(UINT message, WPARAM wParam, LPARAM lParam) = 0;
    // Keeps its place in the table of virtual functions; nothing depends on it.
    virtual BOOL DefaultTrue();
    virtual void setModified(BOOL bModified);
    virtual void OnDMChange();
    virtual void SetControlsFromDM();
    // Disables the controls of m_pPermissionIDs when the user has no permission; never
    // enables anything.
    virtual void LockControls(BOOL bHasPermission);

    // The value given to EndDialog: 1 for OK, 2 for Cancel.
    INT_PTR doModal(HWND hWndParent);
    BOOL getModified() const { return m_bModified; }
    // Item data of the list's selected entry; CB_ERR passes through when nothing is selected.
    DWORD GetComboSelection(int controlId);
    void CenterDialog(HWND hWndReference);
    void SubclassNumericEdit(int controlId);
    // Enables the count controls when the record's firmware is at least minimumRevision,
    // disables them otherwise.
    void EnableForFirmware(const int* ids, int count, LONG minimumRevision);
    // Enables or disables each of count controls; one the template lacks is passed over.
    void EnableControls(const int* ids, int count, BOOL bEnable);
    void EnableControl(int id, BOOL bEnable) { EnableControls(&id, 1, bEnable); }
    // The warning for a value out of range; controlId is the label beside the field.
    void ShowRangeError(int controlId, long minimum, long maximum);
    void ShowRangeError(int controlId, TVOFixed minimum, TVOFixed maximum);
    // WM_HELP: the control's topic of the help file, as a popup.
    void OnHelp(HWND hWnd, WPARAM wParam, const HELPINFO* helpInfo);

    // Distance fields, which show and take values in the record's display units dmxUnits.
    // The units; any other value of dmxUnits asserts and counts as inches.
    eDistanceUnits DisplayUnits() const;
    // The field's text, at most cch characters, parsed as typed.
    TVOFixed GetDistanceText(int editId, int cch = 32);
    // The value's text form in the display units.
    void SetDistanceText(int editId, TVOFixed value);
    // An up-down's click on a distance field: the text spun by delta in the display units,
    // held to maximum and then to minimum, and written back.
    void SpinDistanceField(int editId, int delta, TVOFixed minimum, TVOFixed maximum, int cch = 32);
    // The display unit's name (5302 inches, 5304 millimetres) into each of count controls.
    void SetUnitTexts(const int* ids, int count);

    HWND m_hWnd = nullptr;
    WNDPROC m_wpOrigEditProc = nullptr;
    int m_iResourceID = 0;
    DEVMODEEX* m_pDM = nullptr;
    TVOPrinterConfiguration* m_pConfig = nullptr;
    const DWORD* m_pPermissionIDs = nullptr;
    BOOL m_bModified = 0;

private:
    void ShowRangeMessage(int controlId, DWORD cchLabel, const WCHAR* minimum,
                          const WCHAR* maximum);
};

// A dialog that edits a copy of the record: the given record takes the copy only on OK, so
// Cancel and the close box undo everything, Restore Defaults included.
class TVOWorkingCopyDialog : public TVODialog
{
public:
    TVOWorkingCopyDialog(int resourceId, TVOPrinterConfiguration* pConfig, DEVMODEEX* pDM,
                         const DWORD* pPermissionIDs);

    // OK: the copy over the given record, which m_pDM then points at again.
    void KeepWorkingCopy();
    // Cancel: m_pDM back at the given record, which stays as it was.
    void DropWorkingCopy();

    // One message map for every such dialog; without a record, OK and Cancel only close it.
    INT_PTR DialogProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    virtual BOOL OnInitDialog() = 0;
    virtual void OnCommand(int id, int code) = 0;
    virtual LRESULT OnNotify(const NMHDR* pnmhdr) = 0;
    // The close box is Cancel.
    virtual void OnClose();
    virtual void OnDestroy();

    DEVMODEEX m_DM;
    DEVMODEEX* m_pOrigDM = nullptr;
};

// The window procedures are exports of the driver library as well as the system's callbacks.
#ifdef _WIN32
#define QLM_PROC_EXPORT
#else
#define QLM_PROC_EXPORT __attribute__((visibility("default")))
#endif
extern "C" QLM_PROC_EXPORT INT_PTR CALLBACK TVODialogProcedure(HWND hWnd, UINT message,
                                                               WPARAM wParam, LPARAM lParam);
extern "C" QLM_PROC_EXPORT LRESULT CALLBACK TVODialogNumericEditSubclassProc(HWND hWnd,
                                                                             UINT message,
                                                                             WPARAM wParam,
                                                                             LPARAM lParam);

// The characters the numeric filter lets through, besides backspace. The digit 0 stands twice.
extern const WCHAR kNUMERIC_EDIT_CHARS[];
