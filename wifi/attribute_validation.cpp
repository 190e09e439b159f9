#include "wifi/attribute_validation.h"

#include <linux/nl80211.h>

#include <cstdio>
#include <iterator>
#include <span>

static_assert(sizeof(wifi_attribute_rule) == 12 && offsetof(wifi_attribute_rule, attribute) == 0 &&
              offsetof(wifi_attribute_rule, type) == 4 &&
              offsetof(wifi_attribute_rule, length) == 8);

#define TABLE(name)                                                      \
    const int32_t name##_LENGTH = static_cast<int32_t>(std::size(name)); \
    const wifi_attribute_rule name[]

TABLE(NL80211_VALIDATION) = {
    {CTRL_ATTR_FAMILY_ID, MNL_TYPE_U16, 0},
    {CTRL_ATTR_MCAST_GROUPS, MNL_TYPE_NESTED, 0},
};

TABLE(NL80211_MCAST_GROUPS_VALIDATION) = {
    {CTRL_ATTR_MCAST_GRP_ID, MNL_TYPE_U32, 0},
    {CTRL_ATTR_MCAST_GRP_NAME, MNL_TYPE_STRING, 0},
};

TABLE(NL80211_NEW_SCAN_RESULTS_VALIDATION) = {
    {NL80211_ATTR_IFINDEX, MNL_TYPE_U32, 0},
    {NL80211_ATTR_SCAN_SSIDS, MNL_TYPE_NESTED, 0},
    {NL80211_ATTR_BSS, MNL_TYPE_NESTED, 0},
};

TABLE(NL80211_BSS_VALIDATION) = {
    {NL80211_BSS_BSSID, MNL_TYPE_BINARY, sizeof(wifi_bss_record::bssid)},
    {NL80211_BSS_FREQUENCY, MNL_TYPE_U32, 0},
    {NL80211_BSS_INFORMATION_ELEMENTS, MNL_TYPE_BINARY, 0},
    {NL80211_BSS_STATUS, MNL_TYPE_U32, 0},
    {NL80211_BSS_SIGNAL_MBM, MNL_TYPE_U32, 0},
    {NL80211_BSS_SEEN_MS_AGO, MNL_TYPE_U32, 0},
};

TABLE(NL80211_CMD_NEW_STATION_VALIDATION) = {
    {NL80211_ATTR_STA_INFO, MNL_TYPE_NESTED, 0},
};

TABLE(NL80211_STA_INFO_VALIDATION) = {
    {NL80211_STA_INFO_SIGNAL, MNL_TYPE_U8, 0},
    {NL80211_STA_INFO_SIGNAL_AVG, MNL_TYPE_U8, 0},
    {NL80211_STA_INFO_RX_PACKETS, MNL_TYPE_U32, 0},
    {NL80211_STA_INFO_TX_PACKETS, MNL_TYPE_U32, 0},
};

namespace {

// Returns whether the length alone shows that the rule holds, as for nearly all attributes. Others
// are left to libmnl, whose calls take longer.
bool lengthFits(const wifi_attribute_rule& rule, size_t length) {
    switch (rule.type) {
        case MNL_TYPE_U32:
            return length == sizeof(uint32_t);
        case MNL_TYPE_NESTED:
            return length >= sizeof(nlattr);
        case MNL_TYPE_BINARY:
            return rule.length == 0 || length == rule.length;
        default:
            return false;
    }
}

bool holds(const wifi_attribute_rule& rule, const nlattr* attribute) {
    const auto type = static_cast<mnl_attr_data_type>(rule.type);
    return lengthFits(rule, attribute->nla_len - sizeof(nlattr)) ||
           (rule.length != 0 ? mnl_attr_validate2(attribute, type, rule.length)
                             : mnl_attr_validate(attribute, type)) >= 0;
}

}  // namespace

int wifi_validate_attribute(const nlattr* attribute, void* data) {
    const auto& set = *static_cast<wifi_attribute_set*>(data);
    const auto number = static_cast<uint16_t>(attribute->nla_type & NLA_TYPE_MASK);
    if (number > set.max_type) {
        return MNL_CB_OK;
    }
    for (const auto& rule : std::span(set.rules, static_cast<size_t>(set.rule_count))) {
        if (rule.attribute == number && !holds(rule, attribute)) {
            std::perror("mnl_attr_validate error");
            return MNL_CB_ERROR;
        }
    }
    set.slots[number] = attribute;
    return MNL_CB_OK;
}
