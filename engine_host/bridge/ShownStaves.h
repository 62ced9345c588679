#pragma once

/// What staves with strings show. Where a score has one of the two only, that is shown.
enum class ShownStaves { Both, Tablature, Notation };
