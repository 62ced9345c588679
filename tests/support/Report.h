#pragma once

#include "controller/AlphaTabController.h"

#include <type_traits>
#include <utility>

/// Writes reported state in place of who reports it: a test of a view has no page.
struct TestReport {
    template <typename T, typename Writer> static void assign(Reported<T, Writer> &property, T value)
    {
        property = std::move(value);
    }

    template <typename T, typename Writer, typename Change>
    static void edit(Reported<T, Writer> &property, Change change)
    {
        property.edit(std::move(change));
    }
};

/// Assigns `value` as the writer would.
template <typename T, typename Writer> void report(Reported<T, Writer> &property, std::type_identity_t<T> value)
{
    TestReport::assign(property, std::move(value));
}

/// Changes the value in place as the writer would.
template <typename T, typename Writer, typename Change> void reportChange(Reported<T, Writer> &property, Change change)
{
    TestReport::edit(property, std::move(change));
}

/// The page says of its score whether it has a recording.
inline void reportRecording(AlphaTabController &controller, bool hasBackingTrack)
{
    using namespace Qt::StringLiterals;
    controller.handle({ { u"type"_s, u"score"_s }, { u"title"_s, controller.title.value() },
        { u"artist"_s, controller.artist.value() }, { u"hasBackingTrack"_s, hasBackingTrack } });
}
