#pragma once

// The call of macOS for many entries of a folder with their attributes, made of those of this
// system. Of the attributes it has those that are named here. On a Mac <unistd.h> declares it.

#include <stddef.h>
#include <stdint.h>

#define ATTR_BIT_MAP_COUNT 5

#define ATTR_CMN_NAME 0x00000001
#define ATTR_CMN_OBJTYPE 0x00000008
#define ATTR_CMN_MODTIME 0x00000400
#define ATTR_CMN_ERROR 0x20000000
#define ATTR_CMN_RETURNED_ATTRS 0x80000000
#define ATTR_FILE_DATALENGTH 0x00000200

typedef uint32_t attrgroup_t;
typedef uint32_t fsobj_type_t;

struct attrlist {
  unsigned short bitmapcount;
  uint16_t reserved;
  attrgroup_t commonattr;
  attrgroup_t volattr;
  attrgroup_t dirattr;
  attrgroup_t fileattr;
  attrgroup_t forkattr;
};

typedef struct attribute_set {
  attrgroup_t commonattr;
  attrgroup_t volattr;
  attrgroup_t dirattr;
  attrgroup_t fileattr;
  attrgroup_t forkattr;
} attribute_set_t;

typedef struct attrreference {
  int32_t attr_dataoffset;  ///< from the reference itself
  uint32_t attr_length;
} attrreference_t;

/// The number of entries in the buffer, 0 after the last one, -1 with `errno` set. It takes no
/// options.
int getattrlistbulk(int folder, void* wanted, void* buffer, size_t size, uint64_t options);
