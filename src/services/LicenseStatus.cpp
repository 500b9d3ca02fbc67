// SPDX-License-Identifier: GPL-3.0-or-later
#include "LicenseStatus.h"

using namespace Qt::StringLiterals;

namespace License {

namespace {

const QString kLicensed = u"Licensed"_s;
const QString kNonCommercial = u"Non-Commercial"_s;
const QString kUnlicensed = u"Unlicensed"_s;
const QString kPartiallyLicensed = u"Partially Licensed"_s;
const QString kPublicDomain = u"Public Domain"_s;
const QString kOpenSource = u"Open Source"_s;
const QString kTrial = u"Trial"_s;

} // namespace

const QList<LicenseStatus> &allCases()
{
    static const QList<LicenseStatus> cases{
        LicenseStatus::Licensed,     LicenseStatus::LicensedNonCommercial, LicenseStatus::Unlicensed,
        LicenseStatus::PartiallyLicensed, LicenseStatus::PublicDomain,     LicenseStatus::OpenSource,
        LicenseStatus::Trial,        LicenseStatus::None};
    return cases;
}

const QSet<QString> &allLicenseTags()
{
    static const QSet<QString> tags{kLicensed,    kNonCommercial, kUnlicensed, kPartiallyLicensed,
                                    kPublicDomain, kOpenSource,    kTrial};
    return tags;
}

QString rawValue(LicenseStatus status)
{
    switch (status) {
    case LicenseStatus::Licensed: return kLicensed;
    case LicenseStatus::LicensedNonCommercial: return u"Licensed + Non-Commercial"_s;
    case LicenseStatus::Unlicensed: return kUnlicensed;
    case LicenseStatus::PartiallyLicensed: return kPartiallyLicensed;
    case LicenseStatus::PublicDomain: return kPublicDomain;
    case LicenseStatus::OpenSource: return kOpenSource;
    case LicenseStatus::Trial: return kTrial;
    case LicenseStatus::None: break;
    }
    return u"No Status"_s;
}

QStringList tags(LicenseStatus status)
{
    switch (status) {
    case LicenseStatus::LicensedNonCommercial: return {kLicensed, kNonCommercial};
    case LicenseStatus::None: return {};
    default: return {rawValue(status)};
    }
}

LicenseStatus from(const QStringList &tags)
{
    const QSet<QString> set(tags.begin(), tags.end());
    if (set.contains(kLicensed))
        return set.contains(kNonCommercial) ? LicenseStatus::LicensedNonCommercial : LicenseStatus::Licensed;
    const std::pair<const QString &, LicenseStatus> rules[] = {
        {kUnlicensed, LicenseStatus::Unlicensed},     {kPartiallyLicensed, LicenseStatus::PartiallyLicensed},
        {kPublicDomain, LicenseStatus::PublicDomain}, {kOpenSource, LicenseStatus::OpenSource},
        {kTrial, LicenseStatus::Trial}};
    for (const auto &[tag, status] : rules) {
        if (set.contains(tag))
            return status;
    }
    return LicenseStatus::None;
}

} // namespace License
