// SPDX-License-Identifier: Apache-2.0
#ifndef PEER_H
#define PEER_H

#include <cstdint>
#include <string>

#include "ipc_object_stub.h"
#include "iservice_registry.h"

/**
 * What helpers do with objects, each of which has a name: short functions, whose result is a text. Objects and services
 * tell what happens to them as events.
 */
namespace Peer {

/** What the objects serve. Every request carries a text, and some an object after it; so do the replies. */
enum Code : uint32_t { ECHO = 1, WHO, EVENT, TAKE, GIVE, DROP, CALL_BACK, WAIT, FAIL, FAIL_WITH_REPLY, UNKNOWN, CRASH };

OHOS::sptr<OHOS::ISystemAbilityManager> Manager();

/** The service under that name: "0", "null" or "no manager". */
std::string Find(const char* name, int32_t id);

/** This process's object "me" becomes, or is no more, that service. The manager's code. */
int Serve(int32_t id);
int Unserve(int32_t id);

/** A new object of this process, under its own name, which then tells its events. */
void Make(const char* name);
void Drop(const char* name);

/** How many objects of this process there are; "me" is one. */
int Alive();

/** Whether the named object's process is gone. */
int IsDead(const char* name);

/** Seconds that the calls to come may take. */
void SetWait(int seconds);

/**
 * Calls an object: the result, and the reply's text. What is taken or called back is the object named by `text`; what
 * is given is then named so, and is the "same" as before or an "other"; 22 if there is none.
 */
std::string Call(const char* name, Code code, const char* text = "");

/** A parcel of that size, there and back: the result. */
int CallWithSize(const char* name, size_t size);

/** One-way events; those that are taken are numbered from 0. How many they are, and the last error. */
std::string Send(const char* name, int count);

/**
 * All kinds of calls on so many threads, which hand objects over that both sides drop at once and one that lasts, on
 * each until one fails. How many were answered wrongly, and how many threads failed. Tells "begun" when all have begun.
 */
std::string Hammer(const char* name, size_t threads, int count);

/** Who calls: "PID/UID". */
std::string Who();

/** Tells "dead NAME" at the object's death. False if it is refused. */
int Mourn(const char* name);
int Unmourn(const char* name);

/** Tells "up ID" and "down ID", with `tag` at the end; one with the tag "once" unsubscribes then. The manager's code.
 */
int Watch(int32_t id, const char* tag = "");
int Unwatch(int32_t id, const char* tag = "");

/** Until Release, WAIT (which tells "waiting"), events and notices wait where they are. */
void Hold();
void Release();

/** Waits while that is so; a Hold that comes after `event`, which is told if it is not empty, is too late for it. */
void WaitWhileHeld(const std::string& event = "");

} // namespace Peer

#endif // PEER_H
