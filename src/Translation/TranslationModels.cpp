// SPDX-License-Identifier: MIT
#include "Translation/TranslationModels.h"

#include "Localization.h"

namespace tovi {

QString TranslationError::localizedDescription() const
{
    switch (m_kind) {
    case Kind::network:
    case Kind::missingConfiguration:
        return m_message;
    case Kind::parse:
        return Localization::shared().t(Str::errorParse);
    case Kind::empty:
        return Localization::shared().t(Str::errorEmpty);
    }
    return m_message;
}

} // namespace tovi
