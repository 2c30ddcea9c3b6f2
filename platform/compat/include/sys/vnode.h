#pragma once

// What an entry of a folder is, in the numbers of macOS.

enum vtype { VNON, VREG, VDIR, VBLK, VCHR, VLNK, VSOCK, VFIFO, VBAD, VSTR, VCPLX };
