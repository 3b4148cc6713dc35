// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// The library's names of the data for the languages that are read.
namespace tovi::tesseractData {

inline const QString latin = QStringLiteral("eng");
inline const QString japanese = QStringLiteral("jpn");
inline const QString korean = QStringLiteral("kor");
inline const QString simplifiedChinese = QStringLiteral("chi_sim");
inline const QString traditionalChinese = QStringLiteral("chi_tra");

} // namespace tovi::tesseractData
