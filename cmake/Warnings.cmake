# SPDX-License-Identifier: GPL-3.0-or-later
# One place for the warning flags every target of ours compiles with.
add_library(morvane_warnings INTERFACE)
target_compile_options(morvane_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual
  -Wcast-align -Wnull-dereference -Wimplicit-fallthrough -Wformat=2
  $<$<BOOL:${MORVANE_WERROR}>:-Werror>)
target_compile_definitions(morvane_warnings INTERFACE
  QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS QT_USE_QSTRINGBUILDER)
