#pragma once

#include <QVariantMap>

/// Whoever applies the messages that the engine page posts.
class MessageReceiver {
public:
    virtual ~MessageReceiver() = default;

    /// Takes one page message: a dictionary with text keys. Called on the main thread, in the order of posting.
    virtual void handle(const QVariantMap &message) = 0;
};
