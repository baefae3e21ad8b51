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

// ======================== Dialog templates and what they hold ===========================
// A control's number is the driver's only handle on it: keep these in step with the code.

// ---- Templates --------------------------------------------------------------------------
// Property-sheet tabs, in the order the sheet adds them.
#define IDD_PAPER_TAB    101
#define IDD_JOB_TAB      102
#define IDD_GRAPHICS_TAB 103
#define IDD_RENDER_TAB   104
#define IDD_DEVICE_TAB   105
#define IDD_ABOUT_TAB    106
// Modal dialogs.
#define IDD_ABOUT       201
#define IDD_LABEL       204
#define IDD_UNPRINTABLE 205
#define IDD_CUSTOMISE   206
#define IDD_PLOTNEST    207
#define IDD_ACCOUNT     208
#define IDD_STAMP       209
#define IDD_ROLLCONFIG  210
#define IDD_USERMEDIA   213
#define IDD_FINISH      214
#define IDD_JBA         215
#define IDD_PRINTERIP   217

// ---- Controls that several templates share ----------------------------------------------
#ifndef IDC_STATIC
#define IDC_STATIC (-1)
#endif
// Restore-defaults button of the tabs and of most dialogs.
#define IDC_DEFAULTS 1045
// The product logo (bitmap IDB_LOGO) on every tab and on the dialogs that lock it.
#define IDC_LOGO 1261
// Caption of the account field: device tab, numeric and text accounting dialogs.
#define IDC_ACCOUNT_CAPTION 1129
// "Remember" check box of both accounting dialogs.
#define IDC_ACCOUNT_REMEMBER 1043
// Caption of a rotation or angle field: graphics tab, label dialog.
#define IDC_ROTATION_CAPTION 1184
// Group box around a scale: graphics tab, stamp dialog.
#define IDC_SCALING_GROUP 1188
// Caption of the label choice on the job tab and of the label text in the label dialog.
#define IDC_LABEL_CAPTION 1147

// ---- Bitmaps and icons ------------------------------------------------------------------
#define IDB_ABOUT       54
#define IDB_LOGO        55
#define IDB_MODEL_OTHER 58
#define IDB_MODEL_1     59
#define IDB_MODEL_0     60
#define IDB_MODEL_3     61
#define IDB_MODEL_10    62
#define IDB_MODEL_8     63 // models 8 and 9
#define IDB_MODEL_11    64
#define IDB_MODEL_6     65
#define IDB_MODEL_7     66
// Sheets by orientation: the paper tab shows 4/1, the size fields 6/3 and 5/2.
#define IDI_LANDSCAPE       1
#define IDI_LANDSCAPE_WIDTH 2
#define IDI_LANDSCAPE_SHEET 3
#define IDI_PORTRAIT        4
#define IDI_PORTRAIT_WIDTH  5
#define IDI_PORTRAIT_SHEET  6

// ---- Paper tab (IDD_PAPER_TAB) ----------------------------------------------------------
#define IDC_PAPER_ABOUT              1001
#define IDC_PAPER_MEDIA_TYPE         1008
#define IDC_PAPER_SIZE               1009
#define IDC_PAPER_SOURCE             1010
#define IDC_PAPER_COPIES             1044
#define IDC_PAPER_MARGINS            1083
#define IDC_PAPER_ORIENTATION_GROUP  1086
#define IDC_PAPER_ORIENTATION_ICON   1087
#define IDC_PAPER_PORTRAIT           1093
#define IDC_PAPER_LANDSCAPE          1094
#define IDC_PAPER_COPIES_SPIN        1102
#define IDM_PAPER_CUSTOMISE          1121 // a command the tab sends itself; no control
#define IDC_PAPER_COPIES_CAPTION     1139
#define IDC_PAPER_MEDIA_TYPE_CAPTION 1162
#define IDC_PAPER_SIZE_CAPTION       1166
#define IDC_PAPER_SOURCE_CAPTION     1167
#define IDS_PAPER_CUSTOMISE          5009 // the paper list's row that opens IDD_CUSTOMISE
#define IDS_PAPER_CUSTOM_NOT_STORED  6200
#define IDS_MEDIA_ENDS_FINISHING     7004

// ---- Job tab (IDD_JOB_TAB) --------------------------------------------------------------
#define IDC_JOB_BANNER             1002
#define IDC_JOB_LABEL              1006
#define IDC_JOB_FINISHING          1067
#define IDC_JOB_MISMATCH           1084
#define IDC_JOB_NEST               1085
#define IDC_JOB_PRIORITY           1088
#define IDC_JOB_PRIORITY_SPIN      1108
#define IDC_JOB_FINISHING_OPTIONS  1122
#define IDC_JOB_LABEL_SETTINGS     1123
#define IDC_JOB_NEST_SETTINGS      1124
#define IDC_JOB_STAMP_SETTINGS     1125
#define IDC_JOB_STAMP              1126
#define IDC_JOB_BANNER_CAPTION     1130
#define IDC_JOB_FINISHING_CAPTION  1141
#define IDC_JOB_SINGLEPAGE_CAPTION 1154
#define IDC_JOB_SINGLEPAGE         1155
#define IDC_JOB_MISMATCH_CAPTION   1164
#define IDC_JOB_NEST_CAPTION       1165
#define IDC_JOB_PRIORITY_CAPTION   1172
#define IDC_JOB_STAMP_CAPTION      1193

// ---- Graphics tab (IDD_GRAPHICS_TAB) ----------------------------------------------------
#define IDC_GRAPHICS_MERGE          1013
#define IDC_GRAPHICS_ROTATION       1015
#define IDC_GRAPHICS_SCALE_TO_PAPER 1016
#define IDC_GRAPHICS_MIRROR_X       1040
#define IDC_GRAPHICS_RASTER_SMOOTH  1041
#define IDC_GRAPHICS_PERCENT        1069
#define IDC_GRAPHICS_MIRROR_Y       1081
#define IDC_GRAPHICS_RASTER_KEEP    1095
#define IDC_GRAPHICS_RASTER_SCALE   1096
#define IDC_GRAPHICS_SCALE_NONE     1097
#define IDC_GRAPHICS_SCALE_PAPER    1098
#define IDC_GRAPHICS_SCALE_PERCENT  1099
#define IDC_GRAPHICS_PERCENT_SPIN   1103
#define IDC_GRAPHICS_RASTER_GROUP   1145
#define IDC_GRAPHICS_MIRROR_GROUP   1163
#define IDC_GRAPHICS_MERGE_CAPTION  1174

// ---- Rendering tab (IDD_RENDER_TAB) -----------------------------------------------------
#define IDC_RENDER_RESOLUTION         1014
#define IDC_RENDER_FINE_LINES         1035
#define IDC_RENDER_RESOLUTION_CAPTION 1175
#define IDC_RENDER_LIGHTNESS_CAPTION  1306
#define IDC_RENDER_LIGHTNESS          1307
#define IDC_RENDER_CONTRAST_CAPTION   1308
#define IDC_RENDER_CONTRAST           1309
#define IDC_RENDER_VECTOR_CAPTION     1310
#define IDC_RENDER_VECTOR             1311
#define IDC_RENDER_MODE               1323
#define IDC_RENDER_QUALITY            1324
#define IDC_RENDER_LINE_WIDTH         1325
#define IDC_RENDER_LINE_WIDTH_SPIN    1326
#define IDC_RENDER_GRAYSCALE          1327
#define IDC_RENDER_QUALITY_CAPTION    1328
#define IDC_RENDER_MODE_CAPTION       1329
#define IDC_RENDER_LIGHTNESS_VALUE    1330
#define IDC_RENDER_CONTRAST_VALUE     1331
#define IDC_RENDER_GRAYSCALE_CAPTION  1332
#define IDC_RENDER_LINE_WIDTH_CAPTION 1333
#define IDC_RENDER_SMOOTH_EDGES       1336
#define IDC_RENDER_RASTER_CAPTION     1337
#define IDC_RENDER_RASTER             1338
#define IDC_RENDER_SMOOTHING_CAPTION  1339
#define IDC_RENDER_SMOOTHING          1340
#define IDC_RENDER_SMOOTHING_SPIN     1341
#define IDC_RENDER_CONTENT_CAPTION    1352
#define IDC_RENDER_CONTENT            1353
#define IDS_RENDER_REDUCED_RASTER     132 // IDC_RENDER_RASTER_CAPTION with reduced controls

// ---- Device settings tab (IDD_DEVICE_TAB) -----------------------------------------------
#define IDC_DEVICE_ACCOUNTING       1034
#define IDC_DEVICE_FINISHER         1066
#define IDC_DEVICE_FIRMWARE         1068
#define IDC_DEVICE_INCHES           1091
#define IDC_DEVICE_MM               1092
#define IDC_DEVICE_ROLLS            1100
#define IDC_DEVICE_ACCOUNT_IDS      1120
#define IDC_DEVICE_UNITS_CAPTION    1217
#define IDC_DEVICE_BIDI_CAPTION     1250
#define IDC_DEVICE_REFRESH_ON_OPEN  1251
#define IDC_DEVICE_REFRESH          1252
#define IDC_DEVICE_FIRMWARE_CAPTION 1253
#define IDC_DEVICE_FINISHER_CAPTION 1254
#define IDC_DEVICE_OWNER_LOGIN      1343
#define IDC_DEVICE_OWNER_TYPED      1344
#define IDC_DEVICE_OWNER            1345
#define IDC_DEVICE_OWNER_CAPTION    1346
#define IDS_ACCOUNTING_REQUIRED     114
#define IDS_FINISHER_FROM_FILE      6100 // finisher list row: read a description file
#define IDS_FINISHER_FILE_TITLE     6101
#define IDS_FINISHER_FILE_FILTER    6102 // its last character separates the parts

// ---- About tab (IDD_ABOUT_TAB) and dialog (IDD_ABOUT) -----------------------------------
#define IDC_ABOUT_MODEL_BITMAP  57
#define IDC_ABOUT_BITMAP        1260
#define IDC_ABOUT_HEAVY1        1271
#define IDC_ABOUT_HEAVY2        1272
#define IDC_ABOUT_HEAVY3        1278
#define IDC_ABOUT_UIDRV_VERSION 1930
#define IDC_ABOUT_PDDRV_VERSION 1931
#define IDC_ABOUT_RES_VERSION   1932
#define IDC_ABOUT_TEXT          1936

// ---- Finishing dialog (IDD_FINISH) ------------------------------------------------------
#define IDC_FINISH_TAB             1246
#define IDC_FINISH_BIN_CAPTION     1248
#define IDC_FINISH_BIN             1249
#define IDC_FINISH_PROGRAM_CAPTION 1263
#define IDC_FINISH_DESCRIPTION     1264
#define IDC_FINISH_PROGRAM         1265
#define IDC_FINISH_CROSS_FOLD      1266
#define IDC_FINISH_PUNCH           1267
#define IDC_FINISH_MARGIN          1268
#define IDC_FINISH_FOLD_OPTION     1274
#define IDC_FINISH_OPTION          1334
// Translated FOLD_ program names of a finisher of version "0.0".
#define IDS_FOLD_190             5027
#define IDS_FOLD_210             5028
#define IDS_FOLD_190_MARGIN      5029
#define IDS_FOLD_ANSI_A          5030
#define IDS_FOLD_ARCH_A          5031
#define IDS_FOLD_7HALFX11_MARGIN 5032
#define IDS_FOLD_7HALFX11        5033
// The program description: captions, the size line, and the names of each capability.
#define IDS_UNITS_INCHES_SHORT   5307
#define IDS_FINISH_UNKNOWN       6103
#define IDS_FINISH_FAN_2         6104 // to IDS_FINISH_FAN_2 + 6 for accordion folds 2 to 8
#define IDS_FINISH_CROSS_2       6120 // to IDS_FINISH_CROSS_2 + 9 for cross folds 2 to 11
#define IDS_FINISH_PUNCH_NONE    6140
#define IDS_FINISH_PUNCH_2       6141
#define IDS_FINISH_PUNCH_3       6142
#define IDS_FINISH_PUNCH_4       6143
#define IDS_FINISH_TAB_NONE      6144
#define IDS_FINISH_TAB_2         6145
#define IDS_FINISH_TAB_3         6146
#define IDS_FINISH_FAN_CAPTION   6150
#define IDS_FINISH_CROSS_CAPTION 6151
#define IDS_FINISH_SIZES         6152 // width, length, unit, margin, unit
#define IDS_FINISH_SEPARATOR     6153
#define IDS_FINISH_BIN_PRINTER   6156
#define IDS_FINISH_NO_FOLD       6157

// ---- Label dialog (IDD_LABEL) -----------------------------------------------------------
#define IDC_LABEL_FONT            1004
#define IDC_LABEL_X               1032
#define IDC_LABEL_Y               1033
#define IDC_LABEL_TEXT            1050
#define IDC_LABEL_ANGLE           1055
#define IDC_LABEL_DENSITY         1058
#define IDC_LABEL_SIZE            1059
#define IDC_LABEL_OFFSET_X        1064
#define IDC_LABEL_OFFSET_Y        1065
#define IDC_LABEL_FIELDS          1082
#define IDC_LABEL_ANGLE_SPIN      1110
#define IDC_LABEL_DENSITY_SPIN    1113
#define IDC_LABEL_SIZE_SPIN       1114
#define IDC_LABEL_OFFSET_X_SPIN   1118
#define IDC_LABEL_OFFSET_Y_SPIN   1119
#define IDC_LABEL_FONT_CAPTION    1142
#define IDC_LABEL_FONT_GROUP      1148
#define IDC_LABEL_PLACEMENT_GROUP 1149
#define IDC_LABEL_ANGLE_UNIT      1185
#define IDC_LABEL_DENSITY_CAPTION 1189
#define IDC_LABEL_DENSITY_UNIT    1190
#define IDC_LABEL_SIZE_CAPTION    1191
#define IDC_LABEL_SIZE_UNIT       1192
#define IDC_LABEL_X_CAPTION       1222
#define IDC_LABEL_OFFSET_X_UNIT   1223
#define IDC_LABEL_Y_CAPTION       1224
#define IDC_LABEL_OFFSET_Y_UNIT   1225
// The special-field menu (its first submenu) of IDC_LABEL_FIELDS, and the text each appends.
#define IDM_LABEL_FIELDS   300
#define IDM_FIELD_DATE     2001
#define IDM_FIELD_TIME     2002
#define IDM_FIELD_USER     2003
#define IDM_FIELD_DOCUMENT 2004
#define IDM_FIELD_PAGE     2005
#define IDM_FIELD_COPIES   2006
#define IDM_FIELD_PAPER    2007
#define IDM_FIELD_PRINTER  2008
#define IDS_FIELD_DATE     5501
#define IDS_FIELD_TIME     5502
#define IDS_FIELD_USER     5503
#define IDS_FIELD_DOCUMENT 5504
#define IDS_FIELD_PRINTER  5505
#define IDS_FIELD_PAGE     5506
#define IDS_FIELD_COPIES   5507
#define IDS_FIELD_PAPER    5508

// ---- Unprintable margin dialog (IDD_UNPRINTABLE) ----------------------------------------
// The margins by their place in dmxUnprintableMargin: top 0, bottom 1, right 2, left 3.
#define IDC_UNPRINTABLE_X               1005
#define IDC_UNPRINTABLE_Y               1031
#define IDC_UNPRINTABLE_BOTTOM          1048
#define IDC_UNPRINTABLE_OFFSET_X        1049
#define IDC_UNPRINTABLE_LEFT            1051
#define IDC_UNPRINTABLE_RIGHT           1054
#define IDC_UNPRINTABLE_TOP             1061
#define IDC_UNPRINTABLE_OFFSET_Y        1062
#define IDC_UNPRINTABLE_BOTTOM_SPIN     1101
#define IDC_UNPRINTABLE_OFFSET_X_SPIN   1104
#define IDC_UNPRINTABLE_LEFT_SPIN       1105
#define IDC_UNPRINTABLE_RIGHT_SPIN      1109
#define IDC_UNPRINTABLE_TOP_SPIN        1115
#define IDC_UNPRINTABLE_OFFSET_Y_SPIN   1116
#define IDC_UNPRINTABLE_BOTTOM_CAPTION  1131
#define IDC_UNPRINTABLE_BOTTOM_UNIT     1132
#define IDC_UNPRINTABLE_X_CAPTION       1143
#define IDC_UNPRINTABLE_OFFSET_X_UNIT   1144
#define IDC_UNPRINTABLE_PLACEMENT_GROUP 1146
#define IDC_UNPRINTABLE_LEFT_CAPTION    1150
#define IDC_UNPRINTABLE_LEFT_UNIT       1151
#define IDC_UNPRINTABLE_MARGINS_GROUP   1159
#define IDC_UNPRINTABLE_RIGHT_CAPTION   1176
#define IDC_UNPRINTABLE_RIGHT_UNIT      1177
#define IDC_UNPRINTABLE_TOP_CAPTION     1214
#define IDC_UNPRINTABLE_TOP_UNIT        1215
#define IDC_UNPRINTABLE_Y_CAPTION       1218
#define IDC_UNPRINTABLE_OFFSET_Y_UNIT   1219

// ---- Customise dialog (IDD_CUSTOMISE) ---------------------------------------------------
#define IDC_CUSTOMISE_ANSI           1036
#define IDC_CUSTOMISE_ARCH           1037
#define IDC_CUSTOMISE_ISO            1038
#define IDC_CUSTOMISE_STANDARD       1039
#define IDC_CUSTOMISE_SIZE_GROUP     1140
#define IDC_CUSTOMISE_USER_MEDIA     1234
#define IDC_CUSTOMISE_USER           1235
#define IDC_CUSTOMISE_FAMILIES_GROUP 1255
#define IDC_CUSTOMISE_CATEGORY       1354
#define IDC_CUSTOMISE_LENGTH         1358
#define IDC_CUSTOMISE_WIDTH          1359
#define IDC_CUSTOMISE_WIDTH_SPIN     1375
#define IDC_CUSTOMISE_LENGTH_SPIN    1376
#define IDC_CUSTOMISE_WIDTH_CAPTION  1377
#define IDC_CUSTOMISE_LENGTH_CAPTION 1378
#define IDC_CUSTOMISE_SHEET_ICON     1379
#define IDC_CUSTOMISE_WIDTH_ICON     1380
#define IDC_CUSTOMISE_WIDTH_UNIT     1381
#define IDC_CUSTOMISE_LENGTH_UNIT    1382

// ---- Plot nesting dialog (IDD_PLOTNEST) -------------------------------------------------
#define IDC_PLOTNEST_MARGIN         1053
#define IDC_PLOTNEST_MARGIN_SPIN    1107
#define IDC_PLOTNEST_MARGIN_CAPTION 1158
#define IDC_PLOTNEST_MARGIN_UNIT    1160

// ---- Numeric accounting dialog (IDD_ACCOUNT) --------------------------------------------
#define IDC_ACCOUNT_SUB         1060
#define IDC_ACCOUNT_SUB_CAPTION 1201
#define IDC_ACCOUNT_NUMBER      1357
#define IDS_ACCOUNT_RANGE       6003
#define IDS_SUBACCOUNT_RANGE    6004

// ---- Raster stamp dialog (IDD_STAMP) ----------------------------------------------------
#define IDC_STAMP_NAME          1012
#define IDC_STAMP_SCALE         1057
#define IDC_STAMP_FRONT         1089
#define IDC_STAMP_BEHIND        1090
#define IDC_STAMP_SCALE_SPIN    1112
#define IDC_STAMP_ROTATION      1156
#define IDC_STAMP_NAME_CAPTION  1173
#define IDC_STAMP_SCALE_CAPTION 1187
#define IDC_STAMP_SCALE_UNIT    1256
#define IDC_STAMP_LAYER_GROUP   1257
#define IDC_STAMP_X             1355
#define IDC_STAMP_Y             1356
#define IDC_STAMP_OFFSET_X      1360
#define IDC_STAMP_OFFSET_Y      1361
#define IDC_STAMP_OFFSET_X_SPIN 1362
#define IDC_STAMP_OFFSET_Y_SPIN 1363
#define IDC_STAMP_X_CAPTION     1369
#define IDC_STAMP_OFFSET_X_UNIT 1370
#define IDC_STAMP_Y_CAPTION     1371
#define IDC_STAMP_OFFSET_Y_UNIT 1372

// ---- Roll configuration dialog (IDD_ROLLCONFIG) -----------------------------------------
// Six rows of caption, size, media type and status; row n is the first plus n.
#define IDC_ROLL_SIZE1            1017
#define IDC_ROLL_SHEET_SIZE       1023
#define IDC_ROLL_TYPE1            1024
#define IDC_ROLL_SHEET_TYPE       1030
#define IDC_ROLL_SHEET_CAPTION    1157
#define IDC_ROLL_CAPTION1         1178
#define IDC_ROLL_HEAD_ROLL        1191
#define IDC_ROLL_HEAD_TYPE        1194
#define IDC_ROLL_STATUS1          1195
#define IDC_ROLL_HEAD_SIZE        1216
// A roll's state as the printer reports it (dmxRollStatus 0 none, 1 full, 2 low, 3 empty).
#define IDS_ROLL_STATUS_NONE  5633
#define IDS_ROLL_STATUS_EMPTY 5634
#define IDS_ROLL_STATUS_LOW   5635
#define IDS_ROLL_STATUS_FULL  5636

// ---- User-defined media dialog (IDD_USERMEDIA) ------------------------------------------
#define IDC_USERMEDIA_CATEGORY         1007
#define IDC_USERMEDIA_LENGTH           1052
#define IDC_USERMEDIA_WIDTH            1063
#define IDC_USERMEDIA_WIDTH_ICON       1077
#define IDC_USERMEDIA_SHEET_ICON       1078
#define IDC_USERMEDIA_LENGTH_SPIN      1106
#define IDC_USERMEDIA_WIDTH_SPIN       1117
#define IDC_USERMEDIA_LENGTH_CAPTION   1152
#define IDC_USERMEDIA_LENGTH_UNIT      1153
#define IDC_USERMEDIA_CATEGORY_CAPTION 1161
#define IDC_USERMEDIA_WIDTH_CAPTION    1220
#define IDC_USERMEDIA_WIDTH_UNIT       1221
#define IDC_USERMEDIA_LIST             1228
#define IDC_USERMEDIA_NAME             1229
#define IDC_USERMEDIA_DELETE           1230
#define IDC_USERMEDIA_NAME_CAPTION     1231
#define IDC_USERMEDIA_SAVE             1232
#define IDC_USERMEDIA_CLOSE            1233
#define IDC_USERMEDIA_SIZE_GROUP       1258
#define IDS_FORM_NAME_MISSING          6001
#define IDS_FORMS_FULL                 6002

// ---- Text accounting dialog (IDD_JBA) ---------------------------------------------------
#define IDC_JBA_ACCOUNT      1047
#define IDC_JBA_USER_CAPTION 1276
#define IDC_JBA_USER         1277

// ---- Printer address dialog (IDD_PRINTERIP) ---------------------------------------------
#define IDC_PRINTERIP_ADDRESS     1349
#define IDC_PRINTERIP_TEST        1350
#define IDC_PRINTERIP_PORT        1351
#define IDS_PRINTERIP_TEST_FAILED 6022
#define IDS_PRINTERIP_TEST_OK     6023

// ---- Messages of every dialog -----------------------------------------------------------
// A value out of range: the field's caption, the minimum and the maximum, all as text.
#define IDS_RANGE_ERROR 6008

#endif
