# SPDX-License-Identifier: MIT
# Flags live on one interface target; every target of the tree links it.
add_library(tovi_flags INTERFACE)
# Designated initialisers leave members at their defaults on purpose, hence the one exception.
target_compile_options(tovi_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wold-style-cast -Wnon-virtual-dtor -Woverloaded-virtual
    -Wno-missing-field-initializers
    $<$<BOOL:${TOVI_WARNINGS_AS_ERRORS}>:-Werror>
    $<$<CONFIG:Release>:-fstack-protector-strong -fcf-protection -D_FORTIFY_SOURCE=2>)
target_link_options(tovi_flags INTERFACE
    $<$<CONFIG:Release>:-Wl,-z,relro,-z,now,--as-needed>)
target_compile_definitions(tovi_flags INTERFACE
    QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_FOREACH QT_STRICT_ITERATORS
    TOVI_VERSION="${PROJECT_VERSION}")
if(TOVI_SANITIZE)
    target_compile_options(tovi_flags INTERFACE -fsanitize=${TOVI_SANITIZE} -fno-omit-frame-pointer)
    target_link_options(tovi_flags INTERFACE -fsanitize=${TOVI_SANITIZE})
    if(CMAKE_CXX_COMPILER_ID STREQUAL Clang)
        # Clang 14 cannot compile coroutines with this check.
        target_compile_options(tovi_flags INTERFACE -fno-sanitize=function)
    endif()
endif()
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

# The headers that nearly every file includes, parsed once for all targets.
add_library(tovi_pch OBJECT ${CMAKE_SOURCE_DIR}/cmake/pch.cpp)
# Kept small: the compiler maps all of it for each file.
target_precompile_headers(tovi_pch PUBLIC
    <QString> <QList> <QObject> <QPointF> <QRectF> <QJsonObject> <QFuture> <QPromise>
    <qcorotask.h> <qcorofuture.h>
    <algorithm> <chrono> <functional> <memory> <optional> <variant> <vector>)
target_link_libraries(tovi_pch PUBLIC tovi_flags Qt6::Core Qt6::Gui Qt6::Widgets QCoro6::Core)

# tovi_library(NAME SOURCES...): a static library with the tree's flags and precompiled headers.
function(tovi_library name)
    add_library(${name} STATIC ${ARGN})
    tovi_target(${name})
endfunction()

function(tovi_target name)
    target_link_libraries(${name} PUBLIC tovi_flags Qt6::Core Qt6::Gui Qt6::Widgets QCoro6::Core)
    target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR}/src)
    target_precompile_headers(${name} REUSE_FROM tovi_pch)
endfunction()
