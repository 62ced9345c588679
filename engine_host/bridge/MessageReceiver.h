#pragma once

#include "engine_host/bridge/PageHealth.h"

#include <QVariantMap>

/// Whoever applies the messages that the page posts, and has to know how the page is.
class MessageReceiver {
public:
    virtual ~MessageReceiver() = default;

    /// Takes one page message: a dictionary with text keys. Called on the main thread, in the order of posting.
    virtual void handle(const QVariantMap &message) = 0;

    /// The page does not answer, answers again, or its process has ended.
    virtual void pageHealthChanged(PageHealth health) = 0;
};
