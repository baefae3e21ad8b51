// TVOPaperTab: the first tab of the document sheet. Paper size (by family, the user's forms and
// the custom size), paper source (each roll with the width it holds), media type, orientation
// and copies. It opens the customise, unprintable margin and about dialogs.
#pragma once

#include "../framework/tvotab.h"

// The item data of the paper list's row that opens the customise dialog.
constexpr DWORD kPAPER_ACTION_ROW = 0xFFFFFFFF;
constexpr DWORD kPAPER_ACTION_ROW_ALT = 0xFFFFFFFE; // opens the dialog as well

class TVOPaperTab : public TVOTab
{
public:
    TVOPaperTab(TVODialogInfo* lpdi, TVOPrinterConfiguration* pConfig);
    ~TVOPaperTab() override;

    INT_PTR DialogProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    void SetControlsFromDM() override;

    BOOL OnInitDialog();
    void OnCommand(HWND hWnd, int id, HWND hwndCtl, UINT codeNotify);
    LRESULT OnNotify(HWND hWnd, WPARAM wParam, NMHDR* pnmhdr);
    // Refills the paper list: the families switched on, the user forms, the custom row with
    // its size and the action row; then selects the record's paper.
    void SetMediaSize();
    // Selects the row of dmPaperSize; a paper the list lacks becomes the custom paper.
    void SelectPaperSize();
    // Refills the source list: the rolls the printer has, each with its width, then manual
    // feed and automatic.
    void SetMediaSource();
    void SetOrientation();
    // Restores the tab's own fields.
    void SetDefaults();
    // A choice in one of the three lists.
    void OnListChange(HWND hWnd, int id, UINT codeNotify);

private:
    // The row whose item data is value, or -1.
    int FindPaperRow(DWORD value);
    void OnCopiesChange(UINT codeNotify);
    void OnCustomise();
};
