#include "browser/ComObject.h"

namespace browser {

namespace detail {
std::atomic<long> liveObjects{0};
}

long liveComObjects()
{
    return detail::liveObjects;
}

} // namespace browser
