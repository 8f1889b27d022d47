// One function per record, one line per field, in the record's own order.
#include "cli/records_json.h"

namespace Orvane::cli {
namespace {

Json KnownNumber(std::int32_t number) { return number < 0 ? Json(nullptr) : Json(number); }

}  // namespace

Json ToJson(const ChassisInfo& chassis) {
  return {{"name", chassis.Name},
          {"element_name", chassis.ElementName},
          {"model", chassis.Model},
          {"part_number", chassis.PartNumber},
          {"serial_number", chassis.SerialNumber}};
}

Json ToJson(const Physicallnfo& physical) {
  return {{"slot_number", KnownNumber(physical.SlotNumber)},
          {"uuid", physical.UUID},
          {"pos_id", physical.PosId},
          {"vpd_id", physical.VpdId},
          {"manufacturer", physical.Manufacturer},
          {"sub_system_manufacturer", physical.SubSystemManufacturer},
          {"product_name", physical.ProductName},
          {"part_number", physical.PartNumber},
          {"sku", physical.SKU},
          {"serial_number", physical.SerialNumber}};
}

Json ToJson(const FirmwareIdentity& firmware) {
  return {{"version_string", firmware.VersionString},
          {"major_version", firmware.MajorVersion},
          {"minor_version", firmware.MinorVersion},
          {"revision_number", firmware.RevisionNumber},
          {"build_number", firmware.BuildNumber},
          {"is_not_boot_rom", firmware.IsNotBootRom},
          {"element_software_status", firmware.ElementSoftwareStatus},
          {"element_name", firmware.ElementName},
          {"target_types", firmware.TargetTypes},
          {"full_version_string", firmware.FullVersionString},
          {"classifications", KnownNumber(firmware.Classifications)},
          {"classification_descriptions", firmware.ClassificationDescriptions},
          {"module_firmware_key", firmware.ModuleFirmwareKey}};
}

Json ToJson(const IPInfo& ip) {
  return {{"protocol_if_type", KnownNumber(ip.ProtocolIFType)},
          {"address_origin", KnownNumber(ip.AddressOrigin)},
          {"name", ip.Name},
          {"ipv4_address", ip.IPv4Address},
          {"subnet_mask", ip.SubnetMask},
          {"ipv6_address", ip.IPv6Address},
          {"ipv6_subnet_prefix_length", ip.IPv6SubnetPrefixLength}};
}

Json ToJson(const CMMData& cmm) {
  return {{"physical", ToJson(cmm.Physical)},
          {"firmwares", ToJson(cmm.Firmwares)},
          {"ips", ToJson(cmm.IPs)},
          {"not_primary", cmm.NotPrimary},
          {"name", cmm.Name}};
}

Json ToJson(const CIMIOData& module) {
  return {{"is_pass_thru", module.IsPassThru},
          {"label", module.Label},
          {"physical", ToJson(module.Physical)},
          {"ips", ToJson(module.IPs)},
          {"firmwares", ToJson(module.Firmwares)}};
}

}  // namespace Orvane::cli
