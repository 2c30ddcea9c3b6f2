#pragma once

// What macOS reports of an interface's link, without its counters.

#include <stdint.h>

struct if_data {
  uint8_t ifi_type;
  uint32_t ifi_mtu;
  uint32_t ifi_metric;
  uint32_t ifi_baudrate;
};
