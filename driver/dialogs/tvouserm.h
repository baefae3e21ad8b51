// TVOUserDefinedMediaDlg: the printer's user-defined papers, saved, overwritten and deleted in
// the configuration's form table at once (the sheet stores the table when it closes). It has
// no OK: it always ends with 2 and never reports a change, so the lists that show the forms
// take them when they are next filled.
#pragma once

#include "../framework/tvodialog.h"

class TVOUserDefinedMediaDlg : public TVODialog
{
public:
    TVOUserDefinedMediaDlg(TVOPrinterConfiguration* pConfig, DEVMODEEX* pDM);
    INT_PTR DialogProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    void SetControlsFromDM() override;
    BOOL OnInitDialog();
    void OnCommand(int id, int code);
    LRESULT OnNotify(NMHDR* pnmhdr);
    // Shows the form selected in the list box listId.
    void OnFormSelected(HWND hWnd, int listId);
    // 0 when name, width and length are acceptable, else the field to focus after its message.
    int EnteredValuesAreValid();
    // Overwrites the form of the same name, or adds one while the table has room.
    void SaveForm();
    // Removes the selected form; the forms behind it move up.
    void DeleteForm();

private:
    void AddFormNames();
    // A size in tenths of a millimetre, shown in the display units.
    void ShowSize(TVOFixed width, TVOFixed length);
};
