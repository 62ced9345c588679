#pragma once

class QProcessEnvironment;
class QString;

namespace SmokeTest {

/// Whether the program is to run unattended: QV_SMOKE is "1", or the marker file lies in `temporaryFolder`.
bool isAskedFor(const QProcessEnvironment &environment, const QString &temporaryFolder);

} // namespace SmokeTest
