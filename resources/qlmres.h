// Identifiers of the resource library QLMRes.DLL, shared by QLMRes.rc and the driver. The
// numbers are the contract between the two: the driver names every item by number only.
// Only #defines and comments here: windres reads this file as well as the compiler.
#ifndef QLMRES_H
#define QLMRES_H

// ---- Font families of the label dialog (m_LabelFontFamily) ------------------------------
// The built-in list, used when the printer reported no fonts of its own.
#define IDS_FONT_SWISS             4001
#define IDS_FONT_SWISS_NARROW      4002
#define IDS_FONT_SYMBOL            4003
#define IDS_FONT_DUTCH             4004
#define IDS_FONT_DUTCH_ITALIC      4005
#define IDS_FONT_SCHOOLBOOK_ITALIC 4006
#define IDS_FONT_SCHOOLBOOK        4007
#define IDS_FONT_PALATINO          4008
#define IDS_FONT_PALATINO_ITALIC   4009
#define IDS_FONT_CHANCERY          4010
#define IDS_FONT_OPTIMA            4011
#define IDS_FONT_BOOKMAN           4012
#define IDS_FONT_BOOKMAN_ITALIC    4013
#define IDS_FONT_AVANTGARDE_ITALIC 4014
#define IDS_FONT_AVANTGARDE        4015
#define IDS_FONT_DINGBATS          4016
#define IDS_FONT_ALBERTUS          4017
#define IDS_FONT_ANTIQUE_OLIVE     4018
#define IDS_FONT_ARIAL             4019
#define IDS_FONT_CG_OMEGA          4020
#define IDS_FONT_CG_TIMES          4021
#define IDS_FONT_CLARENDON         4022
#define IDS_FONT_CORONET           4023
#define IDS_FONT_COURIER           4024
#define IDS_FONT_GARAMOND          4025
#define IDS_FONT_HELVETICA         4026
#define IDS_FONT_LETTER_GOTHIC     4027
#define IDS_FONT_LINE_PRINTER      4028
#define IDS_FONT_MARIGOLD          4029
#define IDS_FONT_TIMES_NEW_ROMAN   4030
#define IDS_FONT_UNIVERS           4031
#define IDS_FONT_WINGDINGS         4032
#define IDS_FONT_STICK             4033
#define IDS_FONT_STICK_ITALIC      4034
#define IDS_FONT_ARC               4035
#define IDS_FONT_ARC_ITALIC        4036
#define IDS_FONT_STROKE_ROMAN      4037
#define IDS_FONT_STROKE_SCRIPT     4038
#define IDS_FONT_STROKE_GREEK      4039
#define IDS_FONT_STROKE_GOTHIC     4040
#define IDS_FONT_STROKE_CYRILLIC   4041

// ---- Rendering tab ---------------------------------------------------------------------
// Quality modes (m_QualityModeList).
#define IDS_QUALITY_NORMAL 5001
#define IDS_QUALITY_BEST   5002
#define IDS_QUALITY_FAST   5026
// Resolutions (m_ResolutionList), by code 0 to 3.
#define IDS_RES_200 5003
#define IDS_RES_300 5004
#define IDS_RES_400 5005
#define IDS_RES_600 5006
// Vector handling (m_VectorList).
#define IDS_VECTOR_AS_SENT   5034
#define IDS_VECTOR_OPTIMISED 5035
// Grayscale rendering (m_GrayscaleList).
#define IDS_GRAYSCALE_SHADES      5036
#define IDS_GRAYSCALE_BLACK_WHITE 5037
// Raster method (m_RasterMethodList).
#define IDS_RASTER_ERROR_DIFFUSION 5039
#define IDS_RASTER_DITHER          5040
// Render modes (m_RenderModeList).
#define IDS_RENDERMODE_STANDARD 5230
#define IDS_RENDERMODE_ENHANCED 5231
// Render list (m_RenderList).
#define IDS_RENDER_STANDARD 5350
#define IDS_RENDER_LINES    5351
#define IDS_RENDER_IMAGES   5352

// ---- Graphics tab ----------------------------------------------------------------------
// Line merge (m_GraphicsList2): value 1 stands first.
#define IDS_MERGE_ON      5022
#define IDS_MERGE_PRINTER 5023
#define IDS_MERGE_OFF     5024
// Rotation (m_GraphicsList1 and, without the last row, m_StampRotationList).
#define IDS_ROTATE_0    5112
#define IDS_ROTATE_90   5113
#define IDS_ROTATE_180  5114
#define IDS_ROTATE_270  5115
#define IDS_ROTATE_AUTO 5116

// ---- Job tab ---------------------------------------------------------------------------
// Single-page job (m_SinglePageJobList): the two plain choices; the other rows are rolls.
#define IDS_JOB_SINGLEPAGE_AUTO 5041
#define IDS_JOB_SINGLEPAGE_OFF  5042
// Banner page (m_BannerList).
#define IDS_BANNER_OFF     5200
#define IDS_BANNER_PRINTER 5201
#define IDS_BANNER_BEFORE  5202
#define IDS_BANNER_AFTER   5203
// Label (m_LabelList); the last one opens the label settings.
#define IDS_LABEL_OFF     5204
#define IDS_LABEL_PRINTER 5205
#define IDS_LABEL_ON      5206
// Raster stamp (m_StampList); the last one opens the stamp settings.
#define IDS_STAMP_OFF     5207
#define IDS_STAMP_PRINTER 5208
#define IDS_STAMP_ON      5209
// Plot nesting (m_PlotNestList); the last one opens the nesting settings.
#define IDS_NEST_OFF     5210
#define IDS_NEST_PRINTER 5211
#define IDS_NEST_ON      5212
// Media mismatch (m_MismatchList).
#define IDS_MISMATCH_PRINTER 5213
#define IDS_MISMATCH_HOLD    5214
#define IDS_MISMATCH_PRINT   5215
#define IDS_MISMATCH_CANCEL  5216
// Finishing (m_FinishingList). IDS_FINISHING_BYPASS also names the program FOLD_BYPASS.
#define IDS_FINISHING_BYPASS  5217
#define IDS_FINISHING_PRINTER 5218
#define IDS_FINISHING_PROGRAM 5219

// ---- Finishing dialog: fold options (m_FinishOptionList) --------------------------------
#define IDS_FOLDOPT_PRINTER        5220
#define IDS_FOLDOPT_STANDARD       5221
#define IDS_FOLDOPT_BINDING_MARGIN 5222
#define IDS_FOLDOPT_TITLE_OUTSIDE  5223
#define IDS_FOLDOPT_TITLE_INSIDE   5224

// ---- Paper sources (m_BinList) and media types (m_MediaTypeList) ------------------------
#define IDS_BIN_AUTO     5251
#define IDS_BIN_MANUAL   5252
#define IDS_BIN_ROLL1    5401
#define IDS_BIN_ROLL2    5402
#define IDS_BIN_ROLL3    5403
#define IDS_BIN_ROLL4    5404
#define IDS_BIN_ROLL5    5405
#define IDS_BIN_ROLL6    5406
#define IDS_MEDIA_BOND   5253
#define IDS_MEDIA_VELLUM 5254
#define IDS_MEDIA_FILM   5255
#define IDS_MEDIA_ANY    5256

// ---- Units and the unknown roll --------------------------------------------------------
// The text of a roll width code that has no name of its own.
#define IDS_ROLL_UNKNOWN 5301
// Unit texts shown behind sizes and distances.
#define IDS_UNITS_INCHES 5302
#define IDS_UNITS_MM     5304

// ---- Placements (margin, stamp and label dialogs) ---------------------------------------
#define IDS_PLACE_LEFT         5450
#define IDS_PLACE_RIGHT        5451
#define IDS_PLACE_CENTRE       5452
#define IDS_PLACE_LEFT_MARGIN  5453
#define IDS_PLACE_RIGHT_MARGIN 5454
#define IDS_PLACE_OFFSET       5456
#define IDS_PLACE_TOP          5457
#define IDS_PLACE_BOTTOM       5458

// ---- Roll widths -----------------------------------------------------------------------
// One name per width, shared by the roll size, single-page job, scale-to-paper and media
// category lists.
#define IDS_ROLL_A0    5601
#define IDS_ROLL_A1    5602
#define IDS_ROLL_A2    5603
#define IDS_ROLL_A3    5604
#define IDS_ROLL_620MM 5605
#define IDS_ROLL_860MM 5606
#define IDS_ROLL_880MM 5607
#define IDS_ROLL_750MM 5608
#define IDS_ROLL_900MM 5609
#define IDS_ROLL_11IN  5610
#define IDS_ROLL_12IN  5611
#define IDS_ROLL_17IN  5614
#define IDS_ROLL_18IN  5615
#define IDS_ROLL_22IN  5617
#define IDS_ROLL_24IN  5618
#define IDS_ROLL_30IN  5619
#define IDS_ROLL_34IN  5620
#define IDS_ROLL_36IN  5621
#define IDS_ROLL_38IN  5622
#define IDS_ROLL_42IN  5623
#define IDS_ROLL_44IN  5624
#define IDS_ROLL_48IN  5625
#define IDS_ROLL_50IN  5626
#define IDS_ROLL_53IN  5627
#define IDS_ROLL_54IN  5628
#define IDS_ROLL_B1    5629
#define IDS_ROLL_B2    5630
#define IDS_ROLL_B3    5631
// Widths of the single-page job lists that no roll size code has.
#define IDS_ROLL_310MM 5637
#define IDS_ROLL_330MM 5638
#define IDS_ROLL_400MM 5639
#define IDS_ROLL_430MM 5640
#define IDS_ROLL_440MM 5641
#define IDS_ROLL_480MM 5642
#define IDS_ROLL_640MM 5643
#define IDS_ROLL_660MM 5644
#define IDS_ROLL_890MM 5645

// ---- Papers (m_PaperList, the paper groups, m_SheetSizeList, m_ScaleToPaperList) --------
#define IDS_PAPER_ARCH_D  5701
#define IDS_PAPER_ARCH_E  5702
#define IDS_PAPER_ARCH_30 5703
#define IDS_PAPER_ISO_A0  5704
#define IDS_PAPER_ISO_A1  5705
#define IDS_PAPER_ISO_A2  5706
#define IDS_PAPER_ISO_A3  5707
#define IDS_PAPER_ISO_A4  5708
#define IDS_PAPER_ISO_B4  5709
#define IDS_PAPER_ISO_B3  5710
#define IDS_PAPER_ISO_B2  5711
#define IDS_PAPER_ISO_B1  5712
#define IDS_PAPER_LETTER  5713
#define IDS_PAPER_LEDGER  5714
#define IDS_PAPER_ANSI_A  5715
#define IDS_PAPER_ANSI_B  5716
#define IDS_PAPER_ANSI_C  5717
#define IDS_PAPER_ANSI_D  5718
#define IDS_PAPER_ANSI_E  5719
#define IDS_PAPER_ARCH_A  5720
#define IDS_PAPER_ARCH_B  5721
#define IDS_PAPER_ARCH_C  5722
// The name of the custom paper size in capability lists.
#define IDS_PAPER_CUSTOM 5728

// ---- Media classes a user form may take (m_UserMediaCategoryList) -----------------------
#define IDS_MEDIA_CLASS_SHEET       5723
#define IDS_MEDIA_CLASS_INCH_ROLL   5724
#define IDS_MEDIA_CLASS_METRIC_ROLL 5725
#define IDS_MEDIA_CLASS_ANY_ROLL    5726
#define IDS_MEDIA_CLASS_ANY         5727

// ---- Finishers (m_ReservedList; the first also heads the device tab's finisher list) -----
#define IDS_FINISHER_GERA_ANSI_SPECIAL 5801
#define IDS_FINISHER_NONE              5802
#define IDS_FINISHER_GERA_ISO          5803
#define IDS_FINISHER_GERA_ANSI         5804

// ---- Firmware revisions (m_FirmwareList), by the ordinal of dmxFirmwareRevision ----------
// 5914 has no row. 5928 to 5930 and 5932 stand for the ordinals that no revision text reaches.
#define IDS_FIRMWARE_6_1  5913
#define IDS_FIRMWARE_6_2  5915
#define IDS_FIRMWARE_7_0  5916
#define IDS_FIRMWARE_7_5  5917
#define IDS_FIRMWARE_8_0  5918
#define IDS_FIRMWARE_8_5  5919
#define IDS_FIRMWARE_9_0  5920
#define IDS_FIRMWARE_9_1  5921
#define IDS_FIRMWARE_9_2  5922
#define IDS_FIRMWARE_9_5  5923
#define IDS_FIRMWARE_10_0 5924
#define IDS_FIRMWARE_10_1 5925
#define IDS_FIRMWARE_10_2 5926
#define IDS_FIRMWARE_11_0 5927
#define IDS_FIRMWARE_10_3 5928
#define IDS_FIRMWARE_10_4 5929
#define IDS_FIRMWARE_10_5 5930
#define IDS_FIRMWARE_11_1 5931
#define IDS_FIRMWARE_11_5 5932
#define IDS_FIRMWARE_12_0 5933
#define IDS_FIRMWARE_12_1 5934
#define IDS_FIRMWARE_12_2 5935
#define IDS_FIRMWARE_12_5 5936
#define IDS_FIRMWARE_12_7 5937

#endif
