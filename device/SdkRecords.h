// The device records of one SDK enumeration, destroyed with their holder.
#pragma once

#include <list>
#include <utility>

#include "ZylSdk.h"

class SdkRecords {
public:
    explicit SdkRecords(std::list<ZYLGENICAM::ICameraInfo*> records) : m_records(std::move(records)) {}
    ~SdkRecords()
    {
        for (ZYLGENICAM::ICameraInfo* record : m_records)
            if (record != nullptr)
                record->Destroy();
    }
    SdkRecords(const SdkRecords&) = delete;
    SdkRecords& operator=(const SdkRecords&) = delete;

    // Null entries included: the SDK may list them.
    const std::list<ZYLGENICAM::ICameraInfo*>& List() const { return m_records; }

private:
    std::list<ZYLGENICAM::ICameraInfo*> m_records;
};
