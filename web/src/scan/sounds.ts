// Sounds for right and wrong. They only underline what the screen says.
import { signal } from '@preact/signals';

const kept = 'tessarlorn.sounds';
export const sounds = signal(localStorage.getItem(kept) !== 'off');

export function setSounds(on: boolean): void {
  sounds.value = on;
  localStorage.setItem(kept, on ? 'on' : 'off');
}

let context: AudioContext | undefined;

/** @param tones pairs of hertz and seconds, one after the other */
function play(tones: readonly (readonly [hertz: number, seconds: number])[], shape: OscillatorType): void {
  if (!sounds.value || !('AudioContext' in window)) return;
  context ??= new AudioContext();
  void context.resume();
  let at = context.currentTime;
  for (const [hertz, seconds] of tones) {
    const tone = context.createOscillator();
    const volume = context.createGain();
    tone.type = shape;
    tone.frequency.value = hertz;
    volume.gain.setValueAtTime(0.25, at);
    volume.gain.exponentialRampToValueAtTime(0.001, at + seconds);
    tone.connect(volume).connect(context.destination);
    tone.start(at);
    at += seconds;
    tone.stop(at);
  }
}

export function soundRight(): void {
  play([[880, 0.08], [1320, 0.12]], 'sine');
}

export function soundWrong(): void {
  play([[220, 0.25], [160, 0.35]], 'square');
}
