#include "hpi_peer.h"

namespace oam::bench {

Run hpiPeer() { return nullptr; }

}  // namespace oam::bench
