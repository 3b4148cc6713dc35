// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/LoginItem.h"

namespace tovi {

/// The login item as an entry in the user's autostart folder.
class XdgLoginItem final : public LoginItem
{
public:
    Status status() const override;
    std::optional<QString> registerItem() override;
    std::optional<QString> unregisterItem() override;
};

} // namespace tovi
