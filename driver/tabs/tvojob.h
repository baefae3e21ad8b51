// TVOJobTab: what a job carries besides the picture: banner page, label, raster stamp,
// finishing, plot nesting, what to do on a media mismatch, the single-page job and the
// priority. Its settings buttons open the label, stamp, nesting and finishing dialogs. Some
// controls follow the printer's firmware level and its finisher.
#pragma once

#include "../framework/tvotab.h"

class TVOJobTab : public TVOTab
{
public:
    TVOJobTab(TVODialogInfo* lpdi, TVOPrinterConfiguration* pConfig);

    INT_PTR DialogProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    void OnDMChange() override;
    void SetControlsFromDM() override;
    BOOL OnSetActive() override;

    BOOL OnInitDialog();
    void OnCommand(int id, int code);
    // Puts the tab's fields back to the defaults. Apply stays as it was.
    void SetPrinterDefaults();

    void OnBanner();
    void OnLabel();
    void OnStamp();
    void OnNest();
    void OnFinishing();
    void OnMismatch();
    void OnSinglePageJob();
    void OnPriority();
    void OnSetLabel();
    void OnSetStamp();
    void OnSetNest();
    void OnSetFinishing();

    void ResetComboContent(int control);
    void UpdateLabelSettingsButton();
    void UpdateRasterStampSettingsButton();
    void UpdatePlotNestingSettingsButton();
    // Rules finishing out without a finisher or with any media type but the default.
    void UpdateFinishingOptionsSettingsButton();

private:
    // Firmware below 1 knows neither nesting nor the mismatch choice: both are cleared and
    // their lists follow the level.
    void ApplyFirmwareRules();
};
