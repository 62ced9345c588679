#pragma once

#include <QByteArray>
#include <QUrl>

#include <variant>

/// The demo score of the page.
struct DemoScore { };

/// Where a score came from, so that it can be opened again: nowhere, a file, the bytes of a converted document, the
/// demo.
using ScoreSource = std::variant<std::monostate, QUrl, QByteArray, DemoScore>;
