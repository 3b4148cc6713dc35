// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QString>

class QRandomGenerator;

namespace tovi {

/// A kind of text on a screen: the five languages that are recognised, and lines that mix them.
enum class TextKind { english, simplifiedChinese, traditionalChinese, japanese, korean, mixed };

constexpr TextKind allTextKinds[] = {TextKind::english,
                                     TextKind::simplifiedChinese,
                                     TextKind::traditionalChinese,
                                     TextKind::japanese,
                                     TextKind::korean,
                                     TextKind::mixed};

QString nameOf(TextKind kind);

/// A sentence that the generator puts together; every seed gives other ones.
QString sampleSentence(TextKind kind, QRandomGenerator &random);

} // namespace tovi
