#pragma once

#include <QObject>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

/// Reads one file off the main thread and writes the call that hands it to the page.
///
/// A file may take for ever: a server that does not answer, a lease that another program holds. Nobody waits for it;
/// when this object ends, what is read later is dropped. Main thread only.
class FileReading final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(FileReading)

public:
    /// What is larger is refused, in bytes. No score comes near it.
    static constexpr qint64 largestFile = 200'000'000;
    /// The sentence for a file that is.
    static QString tooLarge();

    /// Whether the file's key in the memory of scores is worked out: that takes a look at every byte.
    enum class Key { None, OfContent };

    struct Result {
        /// Nothing where the file could not be read.
        std::optional<QString> call;
        /// Why it could not.
        QString error;
        /// ScoreMemory::keyFor the content, if that was asked for.
        QString key;
    };
    /// Takes the result, on the main thread.
    using Arrived = std::function<void(const Result &)>;
    /// Does the work in another thread, or at once.
    using Background = std::function<void(std::function<void()> work)>;

    /// Starts at once. `arrived` is called once, and may end this object.
    FileReading(const QString &path, const Background &background, Arrived arrived, Key key = Key::None);
    ~FileReading() override;

    /// The call for the file at `path`. Waits for the file; any thread.
    static Result read(const QString &path, Key key = Key::None);

private:
    struct Shared;

    const std::shared_ptr<Shared> m_shared;
};
