#pragma once

#include <QFile>
#include <QString>

#include <unistd.h>

/// Has the process be an ordinary user's for as long as this lives: root may read every file. An ordinary user's
/// process stays as it is.
class NotRoot final {
    Q_DISABLE_COPY_MOVE(NotRoot)

public:
    /// @param folder of the test, to which that user is let
    explicit NotRoot(const QString &folder)
        : m_wasRoot(::geteuid() == 0)
    {
        using enum QFile::Permission;
        if (!m_wasRoot)
            return;
        QFile::setPermissions(folder, ReadOwner | WriteOwner | ExeOwner | ReadOther | WriteOther | ExeOther);
        if (::seteuid(nobody) != 0)
            qFatal("root cannot be another user");
    }
    ~NotRoot()
    {
        if (m_wasRoot && ::seteuid(0) != 0)
            qFatal("root cannot be root again");
    }

private:
    static constexpr uid_t nobody = 65534;

    const bool m_wasRoot;
};
