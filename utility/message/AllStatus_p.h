// The all-status record: the snapshot of all basic status values, as it travels.
#pragma once

#include "platform/TAPI.h"
#include "utility/message/Message_p.h"

#include <QtCore/QByteArray>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <type_traits>

namespace zyn {

/// 92 bytes, little-endian. Reserved bytes are not read.
struct AllStatus
{
    int32_t batteryStatus;
    int32_t simCardStatus;
    int32_t pinStatus;
    int32_t subsidyStatus;
    int32_t chargeStatus;
    uint8_t reserved20[8];
    int32_t powerOnMode;
    uint8_t batteryCapacity;
    uint8_t reserved33[3];
    int32_t signalQuality;
    int32_t roamingState;
    uint8_t gprsAttachState;  ///< 1 and 2: attached
    uint8_t gprsServiceState; ///< 1: available
    uint8_t reserved46[2];
    char networkId[16]; ///< Latin-1, ended by a NUL or by the field; empty when not registered
    int32_t networkStatus;
    uint8_t reserved68;
    uint8_t imsi[TAPI_IMSI_LENGTH + 1];
    uint8_t reserved85[6];
    uint8_t egprsServiceState; ///< not 0: available
};

static_assert(std::endian::native == std::endian::little, "the record travels as it is in memory");
static_assert(offsetof(AllStatus, batteryStatus) == 0);
static_assert(offsetof(AllStatus, simCardStatus) == 4);
static_assert(offsetof(AllStatus, pinStatus) == 8);
static_assert(offsetof(AllStatus, subsidyStatus) == 12);
static_assert(offsetof(AllStatus, chargeStatus) == 16);
static_assert(offsetof(AllStatus, reserved20) == 20);
static_assert(offsetof(AllStatus, powerOnMode) == 28);
static_assert(offsetof(AllStatus, batteryCapacity) == 32);
static_assert(offsetof(AllStatus, reserved33) == 33);
static_assert(offsetof(AllStatus, signalQuality) == 36);
static_assert(offsetof(AllStatus, roamingState) == 40);
static_assert(offsetof(AllStatus, gprsAttachState) == 44);
static_assert(offsetof(AllStatus, gprsServiceState) == 45);
static_assert(offsetof(AllStatus, reserved46) == 46);
static_assert(offsetof(AllStatus, networkId) == 48 && sizeof(AllStatus::networkId) == 16);
static_assert(offsetof(AllStatus, networkStatus) == 64);
static_assert(offsetof(AllStatus, reserved68) == 68);
static_assert(offsetof(AllStatus, imsi) == 69 && sizeof(AllStatus::imsi) == 16);
static_assert(offsetof(AllStatus, reserved85) == 85);
static_assert(offsetof(AllStatus, egprsServiceState) == 91);
static_assert(sizeof(AllStatus) == 92 && std::is_trivially_copyable_v<AllStatus>);

#define ZYN_AT(member) sizeof(AllStatus::member), Occurrence::Once, offsetof(AllStatus, member)

/// The fields that are read, by their offset.
inline constexpr std::initializer_list<Field> kAllStatusFields = {
    {FieldKind::Int, "battery", ZYN_AT(batteryStatus)},
    {FieldKind::Int, "sim-card", ZYN_AT(simCardStatus)},
    {FieldKind::Int, "pin", ZYN_AT(pinStatus)},
    {FieldKind::Int, "subsidy-lock", ZYN_AT(subsidyStatus)},
    {FieldKind::Int, "charger", ZYN_AT(chargeStatus)},
    {FieldKind::Int, "power-on-mode", ZYN_AT(powerOnMode)},
    {FieldKind::Byte, "battery-capacity", ZYN_AT(batteryCapacity)},
    {FieldKind::Int, "signal-quality", ZYN_AT(signalQuality)},
    {FieldKind::Int, "roaming", ZYN_AT(roamingState)},
    {FieldKind::Byte, "gprs-attach", ZYN_AT(gprsAttachState)},
    {FieldKind::Byte, "gprs-service", ZYN_AT(gprsServiceState)},
    {FieldKind::Latin1, "network-id", ZYN_AT(networkId)},
    {FieldKind::Int, "network", ZYN_AT(networkStatus)},
    {FieldKind::Raw, "imsi", ZYN_AT(imsi)},
    {FieldKind::Byte, "egprs-service", ZYN_AT(egprsServiceState)},
};

#undef ZYN_AT

/// The record that @p payload holds; a field that is not there whole is 0.
inline AllStatus readAllStatus(const QByteArray& payload)
{
    AllStatus status = {};
    for (const Field& field : kAllStatusFields) {
        if (field.offset + field.size <= payload.size())
            std::memcpy(reinterpret_cast<char*>(&status) + field.offset, payload.constData() + field.offset,
                        field.size);
    }
    return status;
}

} // namespace zyn
