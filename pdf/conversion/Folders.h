#pragma once

#include "pdf/conversion/Result.h"
#include "pdf/process/FileDescriptor.h"

#include <optional>

namespace PDFConverter {

/// Makes the folder `path` with any missing ones above it; one that is there already is fine. The failure is the file
/// system's own.
std::optional<Failure> makeFolder(const QString &path);

/// The folder that one conversion works in.
class WorkingFolder final {
    Q_DISABLE_COPY_MOVE(WorkingFolder)

public:
    /// @param kept a folder to use and to leave as it is afterwards; without one, a new folder in the user's temporary
    /// folder that this user alone may enter and that ends with this object
    explicit WorkingFolder(const std::optional<QString> &kept);
    ~WorkingFolder();

    /// Why there is no folder, if there is none.
    const std::optional<Failure> &failure() const { return m_failure; }

    /// Removes the folders of conversions whose program was killed.
    static void sweep();

    QString path(const QString &name) const { return m_path + u'/' + name; }

private:
    const bool m_kept;
    const QString m_path;
    const std::optional<Failure> m_failure;
    /// Tells others that the folder is in use; the system lets go of it when the program ends in any way.
    const FileDescriptor m_hold;
};

} // namespace PDFConverter
