/// \file
/// The attribute log (network byte order attribute log): a stream of attribute records by which the copy of
/// an entity, and of all that it owns, follows the original in another process.
///
/// An end of a connection has an `Out` and a `Demuxer`. On the side that has the original, attach it to the
/// `Out`; on the other, feed the `Demuxer`. An adapter on every entity that is carried turns changes into
/// records and records into changes. What is carried is what the types' records call logged.
///
/// Both ends may write, but each attribute (each key of a collection) should have one writer: of two values
/// that cross on the way, each end takes the other's.
#pragma once

#include "Vorn/Impl/NboAttrLogIn.h"
#include "Vorn/Impl/NboAttrLogOut.h"
#include "Vorn/Impl/StreamAdapter.h"
