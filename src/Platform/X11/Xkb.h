// SPDX-License-Identifier: MIT
#pragma once

// The header has a member named "explicit".
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit
