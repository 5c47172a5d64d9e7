// SPDX-License-Identifier: Apache-2.0
#ifndef APP_H
#define APP_H

#include <cstdint>
#include <string>

/** What helpers do that are apps, which know the service through the client alone, or that are the service. */
namespace App {

/** Registers, or unregisters, for "switch" or a data type, a listener that tells what it hears after its name. */
int Listen(const char* kind, const char* name);
int Unlisten(const char* kind, const char* name);

/** GetActiveIndicators: the result, and whether the records are "right". With a failure come none, or without one. */
std::string GetActive();

/** Registers so many switch listeners, named in the order of their addresses, on eight threads at once. */
void ListenAsMany(size_t count);

/** NotifyPowerEvent. */
int NotifyPower(int32_t event);

/** What a child without exec gets from the client, as an event; and how it ends. */
int Fork();

/** Asks, registers and unregisters on five threads, until Calm. */
void Storm();

/** How many calls were answered, and what the longest took, in ms. */
std::string Calm();

/** Bytes in use on the heap; 0 under a sanitizer. */
long CountHeap();

} // namespace App

/** It knows which stubs it holds, of which process (or, with 0, of all) and kind ("" for every kind). */
namespace Service {

/** With a generation, every event carries that, and who registers hears one at once. The manager's code. */
int Serve(int generation = 0);
void Unserve();

std::string ShowHeld(pid_t process = 0, const char* kind = "");

/** Calls them back once; "failed" if a call has. */
std::string CallAll(pid_t process = 0, const char* kind = "");

/** Again and again, until Calm. With a generation for a while only: nobody reads meanwhile what listeners tell. */
void Flood(pid_t process = 0);
void Calm();

} // namespace Service

#endif // APP_H
