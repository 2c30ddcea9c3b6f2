#pragma once

// The address of the link layer as macOS has it.

#include <stdint.h>
#include <sys/socket.h>

#define AF_LINK 18

struct sockaddr_dl {
  sa_family_t sdl_family;
  uint16_t sdl_index;
  uint8_t sdl_type;
  uint8_t sdl_nlen;
  uint8_t sdl_alen;
  uint8_t sdl_slen;
  char sdl_data[46];  ///< the name, then the address
};

#define LLADDR(address) ((address)->sdl_data + (address)->sdl_nlen)
