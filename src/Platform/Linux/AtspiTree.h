// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include <QPoint>

#include "Platform/Linux/ActiveWindow.h"
#include "Platform/Linux/AtspiClient.h"

/// Finding objects in applications' trees. Nothing is found where an application does not answer sensibly;
/// the request then knows whether it was for lack of time. Trees are walked within bounds: a tree may be
/// endless.
namespace tovi::AtspiTree {

/// The accessible object of the desktop's active window.
std::optional<AtspiObject> windowObject(AtspiRequest &request, const ActiveWindow &window);
/// The object inside the window that has the keyboard focus.
std::optional<AtspiObject> focusedObject(AtspiRequest &request, const AtspiObject &window, bool hasKeyboard);
/// The innermost object of the window at the point (the desktop's pixels).
std::optional<AtspiObject> objectAt(AtspiRequest &request, const AtspiObject &window, QPoint point);
std::optional<AtspiObject> parent(AtspiRequest &request, const AtspiObject &object);
/// The nearest ancestor that is a document.
std::optional<AtspiObject> enclosingDocument(AtspiRequest &request, const AtspiObject &object);

} // namespace tovi::AtspiTree
