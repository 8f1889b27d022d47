// Special members of the exported records and lists, and the callbacks. They are defined here, not inline, so that the
// shared library exports them.
#include <orvane/cmm.h>

namespace Orvane {

Physicallnfo::Physicallnfo() = default;
Physicallnfo::Physicallnfo(const Physicallnfo& other) = default;
Physicallnfo::Physicallnfo(Physicallnfo&& other) noexcept = default;
Physicallnfo& Physicallnfo::operator=(const Physicallnfo& other) = default;
Physicallnfo& Physicallnfo::operator=(Physicallnfo&& other) noexcept = default;
Physicallnfo::~Physicallnfo() = default;

FirmwareIdentity::FirmwareIdentity() = default;
FirmwareIdentity::FirmwareIdentity(const FirmwareIdentity& other) = default;
FirmwareIdentity::FirmwareIdentity(FirmwareIdentity&& other) noexcept = default;
FirmwareIdentity& FirmwareIdentity::operator=(const FirmwareIdentity& other) = default;
FirmwareIdentity& FirmwareIdentity::operator=(FirmwareIdentity&& other) noexcept = default;
FirmwareIdentity::~FirmwareIdentity() = default;

IPInfo::IPInfo() = default;
IPInfo::IPInfo(const IPInfo& other) = default;
IPInfo::IPInfo(IPInfo&& other) noexcept = default;
IPInfo& IPInfo::operator=(const IPInfo& other) = default;
IPInfo& IPInfo::operator=(IPInfo&& other) noexcept = default;
IPInfo::~IPInfo() = default;

ChassisInfo::ChassisInfo() = default;
ChassisInfo::ChassisInfo(const ChassisInfo& other) = default;
ChassisInfo::ChassisInfo(ChassisInfo&& other) noexcept = default;
ChassisInfo& ChassisInfo::operator=(const ChassisInfo& other) = default;
ChassisInfo& ChassisInfo::operator=(ChassisInfo&& other) noexcept = default;
ChassisInfo::~ChassisInfo() = default;

CMMData::CMMData() = default;
CMMData::CMMData(const CMMData& other) = default;
CMMData::CMMData(CMMData&& other) noexcept = default;
CMMData& CMMData::operator=(const CMMData& other) = default;
CMMData& CMMData::operator=(CMMData&& other) noexcept = default;
CMMData::~CMMData() = default;

CIMIOData::CIMIOData() = default;
CIMIOData::CIMIOData(const CIMIOData& other) = default;
CIMIOData::CIMIOData(CIMIOData&& other) noexcept = default;
CIMIOData& CIMIOData::operator=(const CIMIOData& other) = default;
CIMIOData& CIMIOData::operator=(CIMIOData&& other) noexcept = default;
CIMIOData::~CIMIOData() = default;

CMMDataList::CMMDataList() = default;
CMMDataList::~CMMDataList() = default;
std::uint64_t CMMDataList::Size() const { return records_.size(); }
CMMData& CMMDataList::Get(std::size_t index) { return *records_[index]; }

CIMIODataList::CIMIODataList() = default;
CIMIODataList::~CIMIODataList() = default;
std::uint64_t CIMIODataList::Size() const { return records_.size(); }
CIMIOData& CIMIODataList::Get(std::size_t index) { return *records_[index]; }

LogMessageCallBack::~LogMessageCallBack() = default;

EmptyLogMessageCallBack::~EmptyLogMessageCallBack() = default;
void EmptyLogMessageCallBack::OnMessage(const std::string& /*message*/) {}

}  // namespace Orvane
