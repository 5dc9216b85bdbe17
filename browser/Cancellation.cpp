#include "browser/Cancellation.h"

#include <new>

namespace browser {

Cancellation::Cancellation() : event_(CreateEventW(nullptr, TRUE, FALSE, nullptr))
{
    if (!event_)
        throw std::bad_alloc();
}

} // namespace browser
