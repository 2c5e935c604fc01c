#pragma once

#include <host/board/deal_details.h>
#include <kestrel/reactive/publisher.h>
#include <kestrel/runtime/service_protocol.h>
#include <kestrel/session/service_errors.h>

namespace kestrel::host {

/// What this host tells of the records behind the cards of boards.
class DealsService : public ServiceProtocol {
  public:
    [[nodiscard]] virtual AnyPublisher<DealDetails, ReadError> fetchDeal(const PipelineBoardObjectID& id) = 0;
};

namespace host_services {
inline constexpr ServiceKey<DealsService> deals;
}

}  // namespace kestrel::host
