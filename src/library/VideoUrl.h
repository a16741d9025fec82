#pragma once

#include <QString>
#include <QUrl>

#include <optional>

/// The URL that a row's text stands for, or none where no URL can be made of it. People and
/// programs also write plain absolute paths, which stand for themselves.
std::optional<QUrl> videoUrl(const QString& text);

/// Whether a file is there. False for whatever is not on this machine's disks.
bool videoFileExists(const QUrl& url);
