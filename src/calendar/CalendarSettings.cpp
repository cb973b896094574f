// Reading the settings of a calendar list.
#include "calendar/CalendarSettings.h"

#include "core/CRegistry.h"

#include <array>

namespace
{
/// Characters of a text setting, its terminator included: as much as a line of the store holds.
constexpr std::size_t textRoom = 2'051;
/// A text of the registry comes in at most 800 bytes.
constexpr std::size_t registryTextRoom = 401;

/// The open key of one reading.
class SettingsKey
{
  public:
    explicit SettingsKey(const WCHAR *path)
    {
        m_registry.OpenKey(HKEY_CURRENT_USER, path);
    }
    void read(const WCHAR *name, DWORD &value) const
    {
        m_registry.QueryValue(name, &value);
    }
    void read(const WCHAR *name, std::u16string &value)
    {
        if (m_registry.QueryValue(name, m_text.data(), static_cast<DWORD>(m_text.size())) == 0)
        {
            value = m_text.data();
        }
    }
    void readOrWriteBack(const WCHAR *name, DWORD &value)
    {
        if (m_registry.QueryValue(name, &value) != 0)
        {
            m_registry.SetValue(name, value);
        }
    }

  private:
    CRegistry m_registry;
    std::array<WCHAR, textRoom> m_text{};
};

void readViews(SettingsKey &key, CalendarSettings &settings)
{
    key.read(u"WV_ShowTasks", settings.WV_ShowTasks);
    key.read(u"AV_ShowTasks", settings.AV_ShowTasks);
    key.read(u"DV_ShowTasks", settings.DV_ShowTasks);
    key.read(u"MV_ShowTasks", settings.MV_ShowTasks);
    key.read(u"MVD_ShowTasks", settings.MVD_ShowTasks);
}

void readNames(SettingsKey &key, CalendarSettings &settings)
{
    key.read(u"AnnCatName", settings.AnnCatName);
    key.read(u"BDayCatName", settings.BDayCatName);
    key.read(u"HolidayCatName", settings.HolidayCatName);
    key.read(u"HolidaySubName", settings.HolidaySubName);
}

void readFilters(SettingsKey &key, CalendarSettings &settings)
{
    auto filter = static_cast<DWORD>(settings.CAV_FilterAppointments);
    key.read(u"CAV_FilterAppointments", filter);
    settings.CAV_FilterAppointments = static_cast<CalendarFilter>(filter);
    key.read(u"CAV_StatusFilter", settings.CAV_StatusFilter);
    key.read(u"bHideCategories", settings.bHideCategories);
    key.read(u"m_bIncludeNoCat", settings.m_bIncludeNoCat);
    key.read(u"CategoryANDOR", settings.CategoryANDOR);
    key.read(u"ReadBirthdays", settings.ReadBirthdays);
    key.read(u"AppointmentSingleIfEndsEarly", settings.AppointmentSingleIfEndsEarly);
}

void readTasks(SettingsKey &key, CalendarSettings &settings)
{
    key.read(u"CA_ShowCompletedTasks", settings.CA_ShowCompletedTasks);
    key.read(u"CAV_ShowUndatedTasks", settings.CAV_ShowUndatedTasks);
    key.read(u"bShowInProgressTasksToday", settings.bShowInProgressTasksToday);
    key.readOrWriteBack(u"TaskSort", settings.TaskSort);
    key.read(u"TaskSortDescending", settings.TaskSortDescending);
}
} // namespace

CalendarSettings CalendarSettings::read(const WCHAR *path)
{
    CalendarSettings settings;
    std::array<WCHAR, registryTextRoom> text{};
    if (GetFromRegistrySZ(HKEY_CURRENT_USER, todayPluginKey, u"FloatCat", text.data()) == 0)
    {
        settings.FloatCat = text.data();
    }
    SettingsKey key(path);
    readViews(key, settings);
    readNames(key, settings);
    readFilters(key, settings);
    readTasks(key, settings);
    return settings;
}
