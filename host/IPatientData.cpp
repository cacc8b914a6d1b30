// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "host/IPatientData.h"

IPatientData::~IPatientData() = default;
