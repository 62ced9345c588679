#pragma once

#include "controller/Published.h"

/// A published property that only `Writer` assigns: whoever else has it reads and observes it.
template <typename T, typename Writer> class Reported final : private Published<T> {
    Q_DISABLE_COPY_MOVE(Reported)

public:
    using typename Published<T>::Observer;
    using Published<T>::Published;
    using Published<T>::value;
    using Published<T>::operator const T &;
    using Published<T>::onChange;
    using Published<T>::observe;

private:
    friend Writer;
    /// How a test says what the page would (tests/support/Report.h).
    friend struct TestReport;

    using Published<T>::edit;

    Reported &operator=(T newValue)
    {
        Published<T>::operator=(std::move(newValue));
        return *this;
    }
};
