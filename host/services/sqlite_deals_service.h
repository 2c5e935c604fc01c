#pragma once

#include <host/services/deals_service.h>
#include <host/services/host_context.h>
#include <memory>
#include <utility>

namespace kestrel::host {

class SQLiteDealsService final : public DealsService {
  public:
    explicit SQLiteDealsService(std::shared_ptr<HostContext> context) : context_(std::move(context)) {}

    [[nodiscard]] AnyPublisher<DealDetails, ReadError> fetchDeal(const PipelineBoardObjectID& id) override;

  private:
    std::shared_ptr<HostContext> context_;
};

}  // namespace kestrel::host
