#include "controller/AlphaTabController.h"
#include "engine_host/bridge/BridgeCalls.h"

void AlphaTabController::seek(double toFraction)
{
    if (!(endTime > 0))
        return;
    // Written so that a fraction which is not a number ends up at 1.
    const double clamped = toFraction < 0 ? 0 : toFraction < 1 ? toFraction : 1;
    js(BridgeCalls::seekToTime(clamped * endTime));
}
