// Version of the driver files, shared by the version resources of QLMUIDrv.DLL and QLMRes.DLL.
#ifndef QLMVERSION_H
#define QLMVERSION_H

#define QLM_VERSION_MAJOR    12
#define QLM_VERSION_MINOR    7
#define QLM_VERSION_BUILD    0
#define QLM_VERSION_REVISION 0
#define QLM_VERSION_TEXT     "12.7.0.0"
#define QLM_COMPANY_TEXT     "Tarvo"
#define QLM_PRODUCT_TEXT     "Tarvo Wide Format Driver"

#endif
