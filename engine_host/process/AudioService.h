#pragma once

#include <QtGlobal>

/// Chromium's process that speaks to the sound system. Chromium starts a new one whenever it needs one and has none.
namespace AudioService {

/// The number of the one that descends from `process`; 0 where there is none.
qint64 of(qint64 process);

/// Ends it. Sounds that play stand still until somebody begins them anew.
void end(qint64 process);

} // namespace AudioService
