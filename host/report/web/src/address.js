// The address follows the moment: "#frame=930&group=4" is a frame, by the input's own number, and a
// chosen group.

class Address {
  constructor(button) {
    this.waits = false;
    button.addEventListener('click', () => this.copy(button));
  }

  read() {
    const wanted = new URLSearchParams(location.hash.slice(1));
    return { frame: Number(wanted.get('frame') ?? NaN), group: wanted.has('group') ? Number(wanted.get('group')) : undefined };
  }

  // Browsers refuse more than some hundred changes in half a minute.
  follow(frame, group) {
    const pause = 400;
    this.hash = `#frame=${frame}${group === undefined ? '' : `&group=${group}`}`;
    if (!this.waits) {
      this.waits = true;
      setTimeout(() => this.write(), pause);
    }
  }

  write() {
    this.waits = false;
    if (this.hash && this.hash !== location.hash) {
      history.replaceState(null, '', this.hash);
    }
  }

  async copy(button) {
    this.write();
    const text = location.href;
    try {
      await navigator.clipboard.writeText(text);
    } catch {
      // A page that was opened as a file may have no clipboard.
      const field = document.createElement('textarea');
      field.value = text;
      document.body.append(field);
      field.select();
      document.execCommand('copy');
      field.remove();
    }
    const label = button.textContent;
    button.textContent = 'Copied';
    button.disabled = true;
    setTimeout(() => {
      button.textContent = label;
      button.disabled = false;
    }, 1200);
  }
}
