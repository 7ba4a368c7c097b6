#pragma once
#include <QtCore/QObject>
#include <QtCore/QVariant>

#include <optional>

#include <functional>

// The desktop's light or dark preference, as the freedesktop settings portal tells it.
namespace DesktopScheme {
// What the portal's "color-scheme" value means: 1 prefers dark, 2 prefers light, anything
// else (0 is "no preference") says nothing.
std::optional<bool> prefersLight(const QVariant &portalValue);
// Asks the portal without waiting and calls `light` with each answer and each later change,
// for as long as `owner` lives. Without a session bus or a portal nothing is called.
void watch(QObject *owner, std::function<void(bool light)> light);
} // namespace DesktopScheme
