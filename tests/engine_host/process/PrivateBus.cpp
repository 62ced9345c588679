#include "tests/engine_host/process/PrivateBus.h"

#include <QFile>

using namespace Qt::StringLiterals;

namespace {

/// Everybody may say everything; nothing is started.
constexpr char rules[] = R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-BUS Bus Configuration 1.0//EN"
  "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <listen>unix:tmpdir=%1</listen>
  <policy context="default">
    <allow send_destination="*"/>
    <allow receive_sender="*"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";

} // namespace

PrivateBus::PrivateBus()
{
    QFile file(m_folder.filePath(u"bus.conf"_s));
    if (!file.open(QIODevice::WriteOnly))
        return;
    file.write(QString::fromLatin1(rules).arg(m_folder.path()).toUtf8());
    file.close();
    m_daemon.start(u"dbus-daemon"_s, { u"--config-file="_s + file.fileName(), u"--print-address"_s, u"--nofork"_s });
    while (!m_daemon.canReadLine() && m_daemon.waitForReadyRead()) { }
    m_address = QString::fromUtf8(m_daemon.readLine()).trimmed();
}

PrivateBus::~PrivateBus()
{
    m_daemon.terminate();
    m_daemon.waitForFinished();
}
