// The rendering tab: how the rendering half turns a document into printer data. Resolution,
// two sliders, vector and raster handling and a few switches; the tab only stores them in the
// record. Model 5 shows its quality and render mode rows where the other models show the
// resolution and vector rows.
#pragma once

#include "../framework/tvotab.h"

class TVORenderTab : public TVOTab
{
public:
    // bReducedControls hides the controls that a reduced sheet leaves out; the sheet builder
    // passes 0.
    TVORenderTab(TVODialogInfo* lpdi, TVOPrinterConfiguration* pConfig, BOOL bReducedControls);
    ~TVORenderTab() override;

    INT_PTR DialogProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    void SetControlsFromDM() override;

    BOOL OnInitDialog();
    // A slider moved: the new value, held to -10..10, goes to its field and its value text.
    void OnHScroll(HWND hWnd, HWND hwndCtl, UINT code, int pos);
    void SetPrinterDefaults();
    void OnCommand(int id, int code);
    void OnVector();
    void OnRasterMethod();
    void OnFLGrayscaleRendering();
    void OnResolution();
    // These two lists write nothing to the record in this tab.
    void OnQualityMode();
    void OnRenderMode();

    BOOL m_bReducedControls;

private:
    void OnRenderList();
    void OnLineWidthChange();
    void OnSmoothingChange();
    void ShowSliderValue(int valueId, int value);
};
