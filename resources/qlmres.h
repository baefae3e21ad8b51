// Identifiers of the resource library QLMRes.DLL, shared by QLMRes.rc and the driver. The
// numbers are the contract between the two: the driver names every item by number only.
#ifndef QLMRES_H
#define QLMRES_H

// Unit texts shown behind sizes and distances.
#define IDS_UNITS_INCHES 5302
#define IDS_UNITS_MM     5304

// The name of the custom paper size in capability lists.
#define IDS_PAPER_CUSTOM 5728

#endif
