// The recent-call settings.
#pragma once

#include "platform/ZynExport.h"
#include "recentcall/utility/RC_Types.h"

#include <cstdint>

/**
 * The recent-call settings of this process.
 *
 * The list limits, the frequent-calls limit and the idle-Send view are read from the phone settings (group
 * "RECENTCALL_SET") when the object is made, and kept; everything else is read at each call. To be used from one
 * thread. Making the object, a set that fails and questions about fixed dialing print debug lines: see
 * platform/QuietTrace.h.
 */
class ZYN_EXPORT RecentCall_Setup
{
public:
    /// The process's object, made at the first call and after destroy(). The library owns it.
    static RecentCall_Setup* instance();
    /// Ends the process's object, if there is one, for all its users.
    static void destroy();

    /// Reads the settings: list limits (held to 0..50, 50 by default), frequent calls (5), idle-Send view (dialed).
    RecentCall_Setup();

    /// How many calls the list of @p category keeps; for RC_CALL_CATEGORY_ALL the sum of the three, 0 for any other.
    int getMaxRecordSize(RC_CALL_CATEGORY_T category) const;
    /// How many entries a view of frequent calls shows, as stored.
    int getMaxFrequent() const { return m_maxFrequent; }
    /// The view that the recent-call screens open with when Send is pressed on the idle screen.
    RC_CALL_CATEGORY_T getIdleSendView() const { return m_idleSendView; }

    /// Stores whether calls are shown on two lines; false when it could not be stored.
    bool setTwoLineView(bool on);
    /// Whether calls are shown on two lines; false when that is not set.
    bool getTwoLineView();

    /// The switch `Feat_8998` of group "Fixed Dial" in "/setup/zyn_fixeddial.cfg" under ZYN_APP_WRITE_PATH; true when
    /// it is not set.
    bool isFixedDialFlexOn();
    /// Whether the fixed-dialing switch is on and the telephony API reports that fixed dialing is enabled.
    bool isFixedDialingAvailable();

    /// @{ The push-to-talk switches, always on.
    bool isPttOMAFlexOn();
    bool isPttKodiakFlexOn();
    bool isPttFlexOn();
    /// @}

    /// How many activities are kept for a favourite: `MaxItemsToLog` of group "TopPals-UI" in "/setup/zyn_toppals.cfg"
    /// under ZYN_APP_WRITE_PATH; 15 when it is not set. Any stored number is given as it is.
    unsigned int getMaxTopPalsAvlItems();

private:
    int32_t m_maxAnswered;
    int32_t m_maxMissed;
    int32_t m_maxDialed;
    int32_t m_maxFrequent;
    RC_CALL_CATEGORY_T m_idleSendView;
};

static_assert(sizeof(RecentCall_Setup) == 20);
