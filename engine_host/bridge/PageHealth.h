#pragma once

/// How the page is, as the window shows it.
enum class PageHealth {
    Well,
    /// It has not answered for PageWatch::answerTimeoutMs. It may still do so.
    NotAnswering,
    /// Its process has ended. Nothing brings it back but loading it again.
    Ended,
};
