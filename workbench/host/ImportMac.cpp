// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workbench/host/ImportMac.h"

#include "host/SharedKey.h"

#include <QCryptographicHash>

namespace {

constexpr int BlockSize = 64;

QByteArray maskedWith(char mask, QByteArray block)
{
    for (char& byte : block)
        byte = static_cast<char>(byte ^ mask);
    return block;
}

} // namespace

QByteArray hmacSha256(const QByteArray& key, const QByteArray& message)
{
    QByteArray block = key.size() > BlockSize ? QCryptographicHash::hash(key, QCryptographicHash::Sha256) : key;
    block.append(QByteArray(BlockSize - block.size(), '\0'));

    QCryptographicHash inner(QCryptographicHash::Sha256);
    inner.addData(maskedWith(0x36, block));
    inner.addData(message);
    QCryptographicHash outer(QCryptographicHash::Sha256);
    outer.addData(maskedWith(0x5c, block));
    outer.addData(inner.result());
    return outer.result().toHex();
}

QByteArray importMac(const QByteArray& fileBytes, const QString& databaseGuid)
{
    const auto* shared = reinterpret_cast<const char*>(SharedKey.data());
    const QByteArray sharedText = QByteArray(shared, static_cast<int>(SharedKey.size())).toHex();
    return hmacSha256(sharedText + databaseGuid.toUtf8(), fileBytes);
}

bool equalInConstantTime(const QByteArray& a, const QByteArray& b)
{
    if (a.size() != b.size())
        return false;
    int difference = 0;
    for (int i = 0; i < a.size(); ++i)
        difference |= a.at(i) ^ b.at(i);
    return difference == 0;
}
