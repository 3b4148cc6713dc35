// SPDX-License-Identifier: MIT
#pragma once

#include <initializer_list>
#include <utility>

#include <QtGlobal>

/// Time marks for the benchmark and the demonstration: one line "name nanoseconds key=number..." each,
/// written to the file descriptor that TOVI_TRACE_FD names; the time is CLOCK_MONOTONIC. Off otherwise. Never
/// text.
namespace tovi::Trace {

using Number = std::pair<const char *, qint64>;

bool isEnabled();
/// Any thread.
void mark(const char *name, std::initializer_list<Number> numbers = {});

} // namespace tovi::Trace
